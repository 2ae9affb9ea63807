#pragma once

#include "decode/picture.h"

namespace cratewell::decode {

// One of the eight ways to put a picture upright: transpose first, then mirror left to right, then flip top
// to bottom.
struct Orientation
{
    bool transposed = false;
    bool mirrored = false;
    bool flipped = false;

    // Of the nine numbers of a container's display matrix (16.16 fixed point; null means upright); other
    // angles than quarter turns count as the nearest one.
    static Orientation ofDisplayMatrix(const int32_t *matrix);

    friend bool operator==(Orientation, Orientation) = default;
};

// Copies BGRA rows that are `stride` bytes apart into a gapless, upright picture.
Picture uprightPicture(const uint8_t *pixels, Size size, int64_t stride, Orientation orientation);

} // namespace cratewell::decode
