#pragma once

#include "platform/location.h"

namespace cratewell {

class Defaults;

// Which folders of the sidebar's trees stand open, kept in the store. Main thread.
class FolderExpansion
{
public:
    explicit FolderExpansion(Defaults &defaults) : m_defaults(defaults) {}

    // `fallback` for a folder that was never opened or closed.
    bool expanded(const Location &folder, bool fallback) const;
    void setExpanded(const Location &folder, bool expanded);

private:
    Defaults &m_defaults;
};

} // namespace cratewell
