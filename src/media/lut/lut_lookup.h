#pragma once

#include "media/pixel_rows.h"

#include <memory>
#include <optional>

namespace cratewell {

// A color table as the lookups see it: size^3 points of four floats, red running fastest.
struct Lut3DGrid
{
    const float *points = nullptr;
    int size = 0; // 2 to maxGridSize
};

inline constexpr int maxGridSize = 512;

// The same points as whole numbers, for 8-bit pixels: little memory, because far apart pixels read far apart
// points. One step of an 8-bit channel is 2^shift. Each point is red, green and blue; from any two neighbours
// along red, 16 bytes can be read.
class QuantizedGrid
{
public:
    // Nothing when a value is not finite, the values lie too far apart to keep them to an eighth of a step,
    // or memory does not suffice.
    static std::optional<QuantizedGrid> from(const Lut3DGrid &grid);

    const std::int16_t *points() const { return m_points.get(); }
    int size() const { return m_size; }
    int shift() const { return m_shift; }
    // How much of the distance between two points, in 2^22 parts, an 8-bit step of a pixel is.
    std::uint32_t placesPerStep() const { return m_placesPerStep; }

private:
    std::unique_ptr<std::int16_t[]> m_points;
    int m_size = 0;
    int m_shift = 0;
    std::uint32_t m_placesPerStep = 0;
};

// What the lookups promise, in plain arithmetic: a color between points is interpolated along blue, green
// and red, one outside 0 to 1 is that at the edge, NaN is 0. No value of pixel or table reads outside the
// table. Source and target have one size and may be the same rows.
void applyScalar(const Lut3DGrid &grid, PixelRows<const float> source, PixelRows<float> target,
                 AlphaKind alpha);
void applyScalar(const Lut3DGrid &grid, PixelRows<const std::uint8_t> source, PixelRows<std::uint8_t> target,
                 ChannelOrder order, AlphaKind alpha);

// In whole numbers; at most one step from the one above, or one and a half for premultiplied pixels.
void applyScalar(const QuantizedGrid &grid, PixelRows<const std::uint8_t> source,
                 PixelRows<std::uint8_t> target, ChannelOrder order, AlphaKind alpha);

// The same with the widest vectors that this machine has; steps are equal to the last bit.
void lookUp(const Lut3DGrid &grid, PixelRows<const float> source, PixelRows<float> target, AlphaKind alpha);
void lookUp(const QuantizedGrid &grid, PixelRows<const std::uint8_t> source, PixelRows<std::uint8_t> target,
            ChannelOrder order, AlphaKind alpha);
// For tables that have no QuantizedGrid.
void lookUp(const Lut3DGrid &grid, PixelRows<const std::uint8_t> source, PixelRows<std::uint8_t> target,
            ChannelOrder order, AlphaKind alpha);

} // namespace cratewell
