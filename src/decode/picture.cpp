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
