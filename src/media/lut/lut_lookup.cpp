#include "media/lut/lut_lookup.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace cratewell {

namespace {

using Color = std::array<float, 4>;

// Where a value lies between two points of an edge.
struct Place
{
    Place(float value, int size)
    {
        const float clamped = value > 0 ? std::min(value, 1.0F) : 0.0F; // NaN is not above 0
        const float position = clamped * float(size - 1);
        below = std::min(int(position), size - 2);
        part = position - float(below);
    }
    int below;
    float part;
};

Color between(const Color &from, const Color &to, float part)
{
    Color result;
    for (size_t channel = 0; channel < result.size(); ++channel)
        result[channel] = from[channel] + part * (to[channel] - from[channel]);
    return result;
}

Color lookedUp(const Lut3DGrid &grid, const Color &color)
{
    const Place red(color[0], grid.size);
    const Place green(color[1], grid.size);
    const Place blue(color[2], grid.size);
    const auto size = size_t(grid.size);
    const auto point = [&](int r, int g, int b) {
        const size_t index =
            (size_t(blue.below + b) * size + size_t(green.below + g)) * size + size_t(red.below + r);
        Color result;
        std::memcpy(result.data(), grid.points + 4 * index, sizeof result);
        return result;
    };
    const auto alongBlue = [&](int r, int g) { return between(point(r, g, 0), point(r, g, 1), blue.part); };
    const auto alongGreen = [&](int r) { return between(alongBlue(r, 0), alongBlue(r, 1), green.part); };
    return between(alongGreen(0), alongGreen(1), red.part);
}

// Keeps alpha, and a pixel that cannot be seen.
Color graded(const Lut3DGrid &grid, const Color &pixel, AlphaKind alpha)
{
    Color color = pixel;
    const bool premultiplied = alpha == AlphaKind::Premultiplied;
    if (premultiplied) {
        if (!(pixel[3] > 0))
            return pixel;
        for (float &channel : color)
            channel /= pixel[3];
    }
    color = lookedUp(grid, color);
    if (premultiplied) {
        for (float &channel : color)
            channel *= pixel[3];
    }
    color[3] = pixel[3];
    return color;
}

std::uint8_t step(float value)
{
    return std::uint8_t(value > 0 ? std::min(value * 255 + 0.5F, 255.0F) : 0.0F);
}

// Calls `grade(red, green, blue, alpha)` with references for each pixel of `target`, filled from `source`.
template<typename Grade>
void gradeBytes(PixelRows<const std::uint8_t> source, PixelRows<std::uint8_t> target, ChannelOrder order,
                Grade grade)
{
    const size_t red = order == ChannelOrder::RGBA ? 0 : 2;
    for (int y = 0; y < source.height; ++y) {
        const std::uint8_t *from = source.row(y);
        std::uint8_t *to = target.row(y);
        for (int x = 0; x < source.width; ++x, from += 4, to += 4) {
            std::memmove(to, from, 4);
            grade(to[red], to[1], to[2 - red], to[3]);
        }
    }
}

int timesFraction(int value, int fraction)
{
    return (value * fraction + (1 << 14)) >> 15;
}

// Along blue, green and red, the fractions being of 2^15.
int between(const std::int16_t *point, const std::array<size_t, 3> &next, const std::array<int, 3> &parts)
{
    const auto along = [](int from, int to, int part) { return from + timesFraction(to - from, part); };
    const auto alongBlue = [&](size_t at) { return along(point[at], point[at + next[2]], parts[2]); };
    const auto alongGreen = [&](size_t at) {
        return along(alongBlue(at), alongBlue(at + next[1]), parts[1]);
    };
    return along(alongGreen(0), alongGreen(next[0]), parts[0]);
}

void gradeSteps(const QuantizedGrid &grid, std::array<std::uint8_t *, 3> color)
{
    const auto size = std::uint32_t(grid.size());
    const std::array<size_t, 3> next{3, 3 * size_t(size), 3 * size_t(size) * size};
    const std::int16_t *point = grid.points();
    std::array<int, 3> parts{};
    for (size_t channel = 0; channel < 3; ++channel) {
        const std::uint32_t place =
            std::min((*color[channel] * grid.placesPerStep()) >> 7, ((size - 1) << 15) - 1);
        point += next[channel] * (place >> 15);
        parts[channel] = int(place & 0x7FFF);
    }
    for (size_t channel = 0; channel < 3; ++channel) {
        const int value = timesFraction(between(point + channel, next, parts), 1 << (15 - grid.shift()));
        *color[channel] = std::uint8_t(std::clamp(value, 0, 255));
    }
}

} // namespace

std::optional<QuantizedGrid> QuantizedGrid::from(const Lut3DGrid &grid)
{
    const size_t count = size_t(grid.size) * size_t(grid.size) * size_t(grid.size);
    float least = 0;
    float most = 0;
    bool finite = true;
    for (size_t index = 0; index < 4 * count; ++index) {
        const float value = grid.points[index];
        finite = finite && std::isfinite(value);
        least = std::min(least, value);
        most = std::max(most, value);
    }
    int shift = 7;
    while (shift >= 3 && (most - least) * 255 * float(1 << shift) > 32767)
        --shift;
    if (!finite || shift < 3)
        return std::nullopt;

    QuantizedGrid result;
    result.m_size = grid.size;
    result.m_shift = shift;
    result.m_placesPerStep = std::uint32_t(((std::uint64_t(grid.size - 1) << 22) + 127) / 255);
    constexpr size_t readBeyond = 2;
    result.m_points.reset(new (std::nothrow) std::int16_t[3 * count + readBeyond]());
    if (!result.m_points)
        return std::nullopt;
    const float scale = 255 * float(1 << shift);
    for (size_t point = 0; point < count; ++point) {
        for (size_t channel = 0; channel < 3; ++channel) {
            const float scaled = grid.points[4 * point + channel] * scale;
            result.m_points[3 * point + channel] = std::int16_t(scaled + (scaled < 0 ? -0.5F : 0.5F));
        }
    }
    return result;
}

void applyScalar(const Lut3DGrid &grid, PixelRows<const float> source, PixelRows<float> target,
                 AlphaKind alpha)
{
    for (int y = 0; y < source.height; ++y) {
        const float *from = source.row(y);
        float *to = target.row(y);
        for (int x = 0; x < source.width; ++x, from += 4, to += 4) {
            Color pixel;
            std::memcpy(pixel.data(), from, sizeof pixel);
            pixel = graded(grid, pixel, alpha);
            std::memcpy(to, pixel.data(), sizeof pixel);
        }
    }
}

void applyScalar(const Lut3DGrid &grid, PixelRows<const std::uint8_t> source, PixelRows<std::uint8_t> target,
                 ChannelOrder order, AlphaKind alpha)
{
    using Byte = std::uint8_t;
    gradeBytes(source, target, order, [&](Byte &red, Byte &green, Byte &blue, Byte transparency) {
        const Color pixel{float(red) / 255, float(green) / 255, float(blue) / 255, float(transparency) / 255};
        const Color color = graded(grid, pixel, alpha);
        red = step(color[0]);
        green = step(color[1]);
        blue = step(color[2]);
    });
}

void applyScalar(const QuantizedGrid &grid, PixelRows<const std::uint8_t> source,
                 PixelRows<std::uint8_t> target, ChannelOrder order, AlphaKind alpha)
{
    using Byte = std::uint8_t;
    gradeBytes(source, target, order, [&](Byte &red, Byte &green, Byte &blue, Byte transparency) {
        const std::array color{&red, &green, &blue};
        const int opacity = alpha == AlphaKind::Straight ? 255 : transparency;
        if (opacity == 0)
            return;
        for (Byte *channel : color)
            *channel = Byte(std::min((510 * *channel + opacity) / (2 * opacity), 255));
        gradeSteps(grid, color);
        for (Byte *channel : color) {
            const int product = *channel * opacity + 128;
            *channel = Byte((product + (product >> 8)) >> 8);
        }
    });
}

void lookUp(const Lut3DGrid &grid, PixelRows<const std::uint8_t> source, PixelRows<std::uint8_t> target,
            ChannelOrder order, AlphaKind alpha)
{
    applyScalar(grid, source, target, order, alpha);
}

} // namespace cratewell
