#pragma once

#include "decode/internal/ffmpeg_handles.h"
#include "decode/internal/orientation.h"

namespace cratewell::decode {

// A decoded frame as an upright picture that fits inside maxSide x maxSide: color matrix and range as the
// frame says, alpha kept, stored pixels of any shape made square.
Decoded<Picture> framePicture(const AVFrame &frame, double pixelAspect, Orientation orientation, int maxSide);

} // namespace cratewell::decode
