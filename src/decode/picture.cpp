#include "decode/picture.h"

#include <algorithm>
#include <cmath>

namespace cratewell::decode {

Size fittedInside(double width, double height, int maxSide)
{
    const double scale = std::min({1.0, maxSide / width, maxSide / height});
    const auto side = [&](double length) {
        return std::clamp(int(std::lround(length * scale)), 1, std::max(1, maxSide));
    };
    return {side(width), side(height)};
}

bool hasTransparency(const uint8_t *pixels, int64_t count)
{
    // In blocks without branches, which the compiler turns into vector instructions.
    constexpr int64_t block = 1024;
    for (int64_t at = 0; at < count; at += block) {
        uint8_t opaque = 255;
        for (int64_t i = at, end = std::min(at + block, count); i < end; ++i)
            opaque &= pixels[i * 4 + 3];
        if (opaque != 255)
            return true;
    }
    return false;
}

void premultiply(uint8_t *pixels, int width, int height, int64_t stride)
{
    for (int y = 0; y < height; ++y, pixels += stride) {
        for (uint8_t *pixel = pixels, *end = pixels + int64_t{width} * 4; pixel != end; pixel += 4) {
            const unsigned alpha = pixel[3];
            if (alpha == 255)
                continue;
            for (int channel = 0; channel < 3; ++channel)
                pixel[channel] = uint8_t((pixel[channel] * alpha + 127) / 255);
        }
    }
}

} // namespace cratewell::decode
