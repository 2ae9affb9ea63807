#pragma once

#include "decode/media_info.h"

#include <cstdint>
#include <string>
#include <tl/expected.hpp>
#include <utility>
#include <vector>

namespace cratewell::decode {

// Upright sRGB pixels, rows top to bottom without gaps, four bytes each: blue, green, red, alpha; colors are
// premultiplied by alpha.
struct Picture
{
    int width = 0;
    int height = 0;
    bool hasAlpha = false; // some pixel is not opaque
    std::vector<uint8_t> pixels;
    MediaInfo info = {}; // of the file it comes from
};

// Every decoding function fails with a sentence for a person, never by a signal of its own. Only where memory
// runs out it throws std::bad_alloc.
template<typename T> using Decoded = tl::expected<T, std::string>;

inline tl::unexpected<std::string> failed(std::string why)
{
    return tl::unexpected(std::move(why));
}

// Pictures that claim more pixels than this are refused before memory is taken for them.
inline constexpr int64_t maxFramePixels = int64_t{1} << 26;
inline constexpr int64_t maxStillPixels = int64_t{1} << 28;

struct Size
{
    int width = 0;
    int height = 0;
    friend bool operator==(Size, Size) = default;
};

// The size with the same shape whose sides are at most `maxSide`; never larger than given, never below 1.
Size fittedInside(double width, double height, int maxSide);

// Whether some pixel of these gapless BGRA rows is not opaque.
bool hasTransparency(const uint8_t *pixels, int64_t count);

// In place, over rows of `width` straight BGRA pixels that are `stride` bytes apart.
void premultiply(uint8_t *pixels, int width, int height, int64_t stride);

} // namespace cratewell::decode
