#pragma once

#include "decode/picture.h"

namespace cratewell::decode {

// `count` peaks of the first five minutes of a file's sound: the n frames are cut into buckets of n / count
// (at least one), each is looked at in some 96 places, and the largest sample of any channel is its peak; all
// are divided by the largest of them. Where there are fewer frames than buckets the rest is 0. Fails where
// there is no sound to read. The descriptor of a regular file is borrowed. Any thread; blocks.
Decoded<std::vector<float>> audioPeaks(int descriptor, int count);

} // namespace cratewell::decode
