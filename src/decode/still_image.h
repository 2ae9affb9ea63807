#pragma once

#include "decode/picture.h"

namespace cratewell::decode {

// A JPEG, PNG, TIFF, WebP, GIF or HEIC picture (its content decides; of an animation the first frame),
// upright and in sRGB, that fits inside maxSide x maxSide. The descriptor of a regular file is borrowed. Any
// thread; blocks while it decodes.
Decoded<Picture> stillImage(int descriptor, int maxSide);

// In pixels, as stored. Fails for what stillImage() would not read.
Decoded<Size> stillImageSize(int descriptor);

} // namespace cratewell::decode
