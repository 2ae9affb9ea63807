#pragma once

#include "decode/internal/ffmpeg_handles.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace cratewell::decode {

// Brings frames of other colors than sRGB's to it: BT.2020 and P3 primaries, and the transfer functions of
// high dynamic range, PQ (SMPTE ST 2084) and HLG (BT.2100, shown as on a display of 1000 cd/m2).
// What is brighter than white is rolled off after BT.2390 (EETF without black lift) so that the brightest the
// film was graded for becomes white, which stands for the 203 cd/m2 of reference white in BT.2408; darker
// than about half of that nothing changes. What sRGB cannot show is cut off.
class ColorMapping
{
public:
    // Nothing where the frame is to be shown as it is.
    static std::optional<ColorMapping> of(const AVFrame &frame);

    // Rows of straight 16-bit RGBA, as the frame codes them, to straight 8-bit BGRA.
    void apply(const AVFrame &rgba, AVFrame &bgra) const;

private:
    enum class Transfer { Usual, Pq, Hlg };
    using Matrix = std::array<float, 9>;

    ColorMapping(Transfer transfer, const Matrix &toSrgb, float peak);
    void fillLight();
    void fillRollOff();
    std::array<float, 3> displayed(const uint16_t *rgb) const;

    Transfer m_transfer;
    Matrix m_toSrgb;              // linear light in, linear light out
    float m_peak;                 // cd/m2 the film was graded for
    std::vector<float> m_light;   // of a code; cd/m2, for HLG of the scene, else of white
    std::vector<float> m_rollOff; // factor, by the square root of light over peak
};

} // namespace cratewell::decode
