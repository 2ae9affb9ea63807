#pragma once

#include "decode/media_info.h"
#include "decode/picture.h"

namespace cratewell::decode {

// Of a still, a video or a sound; the content decides which it is. The descriptor of a regular file is
// borrowed. Any thread; blocks.
Decoded<MediaInfo> fileInfo(int descriptor);

} // namespace cratewell::decode
