#pragma once

#include "decode/picture.h"

namespace cratewell::decode {

// The frame at a fraction (0 to 1) of a video's duration, not later than 0.98 of it, that fits inside
// maxSide x maxSide. The descriptor of a regular file is borrowed. Any thread; blocks while it decodes.
Decoded<Picture> videoFrame(int descriptor, double fraction, int maxSide);

} // namespace cratewell::decode
