#include "decode/internal/orientation.h"

#include <cstdlib>
#include <cstring>
#include <utility>

namespace cratewell::decode {

// A point goes to x' = a x + c y, y' = b x + d y with the matrix (a b u / c d v / x y w).
Orientation Orientation::ofDisplayMatrix(const int32_t *matrix)
{
    if (!matrix)
        return {};
    const int64_t a = matrix[0], b = matrix[1], c = matrix[3], d = matrix[4];
    if (std::abs(b) > std::abs(a))
        return {.transposed = true, .mirrored = c < 0, .flipped = b < 0};
    return {.transposed = false, .mirrored = a < 0, .flipped = d < 0};
}

Picture uprightPicture(const uint8_t *pixels, Size size, int64_t stride, Orientation orientation)
{
    // Along an upright row the source moves by `across`, from one upright row to the next by `down`.
    int64_t across = 4, down = stride;
    if (orientation.transposed) {
        std::swap(size.width, size.height);
        std::swap(across, down);
    }
    if (orientation.mirrored) {
        pixels += across * (size.width - 1);
        across = -across;
    }
    if (orientation.flipped) {
        pixels += down * (size.height - 1);
        down = -down;
    }

    Picture picture{.width = size.width, .height = size.height, .pixels = {}};
    picture.pixels.resize(size_t(size.width) * size_t(size.height) * 4);
    uint8_t *out = picture.pixels.data();
    for (int y = 0; y < size.height; ++y, pixels += down) {
        if (across == 4) {
            std::memcpy(out, pixels, size_t(size.width) * 4);
            out += size_t(size.width) * 4;
            continue;
        }
        const uint8_t *from = pixels;
        for (int x = 0; x < size.width; ++x, from += across, out += 4)
            std::memcpy(out, from, 4);
    }
    return picture;
}

} // namespace cratewell::decode
