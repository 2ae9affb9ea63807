#pragma once

namespace cratewell {

// Somebody's request for a preview. While it lives, the preview is made; dropping it before the work has
// started takes the work off the list.
class PreviewRequest
{
public:
    virtual ~PreviewRequest() = default;
};

} // namespace cratewell
