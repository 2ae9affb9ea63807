#pragma once

#include "decode/media_info.h"

#include <QString>

namespace cratewell {

// The codec's four characters without the blanks around them; "?" where it has no such name, empty without a
// video.
QString codecText(const MediaInfo &info);

} // namespace cratewell
