#pragma once

#include "decode/internal/media_container.h"
#include "decode/media_info.h"

namespace cratewell::decode {

// What the header says of a container with this video, opened for its info, and of the sound beside it.
MediaInfo filmInfo(const MediaContainer &container, const AVStream &video);

} // namespace cratewell::decode
