#include "decode/internal/color_mapping.h"

extern "C" {
#include <libavutil/mastering_display_metadata.h>
}

#include <algorithm>
#include <cmath>

namespace cratewell::decode {

namespace {

constexpr float referenceWhite = 203; // cd/m2
constexpr float usualPeak = 1000;     // cd/m2
constexpr double pqPeak = 10000;      // cd/m2
constexpr int codeSteps = 4096;
constexpr int rollOffSteps = 4096;
constexpr int outputSteps = 16384;

constexpr std::array<float, 9> same{1, 0, 0, 0, 1, 0, 0, 0, 1};
constexpr std::array<float, 9> from2020{1.660491F,  -0.587641F, -0.072850F, -0.124550F, 1.132900F,
                                        -0.008349F, -0.018151F, -0.100579F, 1.118730F};
constexpr std::array<float, 9> fromP3{1.224940F, -0.224940F, 0,          -0.042057F, 1.042057F,
                                      0,         -0.019638F, -0.078636F, 1.098274F};

double pqLight(double code)
{
    const double power = std::pow(code, 1 / 78.84375);
    const double ratio = std::max(power - 0.8359375, 0.0) / (18.8515625 - 18.6875 * power);
    return pqPeak * std::pow(ratio, 1 / 0.1593017578125);
}

double pqCode(double light)
{
    const double power = std::pow(light / pqPeak, 0.1593017578125);
    return std::pow((0.8359375 + 18.8515625 * power) / (1 + 18.6875 * power), 78.84375);
}

double hlgSceneLight(double code)
{
    constexpr double a = 0.17883277, b = 0.28466892, c = 0.55991073;
    return code <= 0.5 ? code * code / 3 : (std::exp((code - c) / a) + b) / 12;
}

double srgbLight(double code)
{
    return code <= 0.04045 ? code / 12.92 : std::pow((code + 0.055) / 1.055, 2.4);
}

double srgbCode(double light)
{
    return light <= 0.0031308 ? light * 12.92 : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

const std::vector<uint8_t> &srgbBytes()
{
    static const std::vector<uint8_t> bytes = [] {
        std::vector<uint8_t> table(outputSteps + 1);
        for (int i = 0; i <= outputSteps; ++i)
            table[size_t(i)] = uint8_t(std::lround(255 * srgbCode(double(i) / outputSteps)));
        return table;
    }();
    return bytes;
}

// What the film was graded on, or the brightest there is in it.
float peakOf(const AVFrame &frame)
{
    double peak = usualPeak;
    if (const auto *side = av_frame_get_side_data(&frame, AV_FRAME_DATA_MASTERING_DISPLAY_METADATA)) {
        const auto *display = reinterpret_cast<const AVMasteringDisplayMetadata *>(side->data);
        if (display->has_luminance && display->max_luminance.den != 0)
            peak = av_q2d(display->max_luminance);
    }
    return std::clamp(float(peak), referenceWhite, float(pqPeak));
}

} // namespace

std::optional<ColorMapping> ColorMapping::of(const AVFrame &frame)
{
    Transfer transfer = Transfer::Usual;
    if (frame.color_trc == AVCOL_TRC_SMPTE2084)
        transfer = Transfer::Pq;
    else if (frame.color_trc == AVCOL_TRC_ARIB_STD_B67)
        transfer = Transfer::Hlg;
    const bool bright = transfer != Transfer::Usual;

    Matrix toSrgb = same;
    if (frame.color_primaries == AVCOL_PRI_BT2020 ||
        (bright && frame.color_primaries == AVCOL_PRI_UNSPECIFIED))
        toSrgb = from2020;
    else if (frame.color_primaries == AVCOL_PRI_SMPTE432 || frame.color_primaries == AVCOL_PRI_SMPTE431)
        toSrgb = fromP3;
    else if (!bright)
        return std::nullopt;
    return ColorMapping(transfer, toSrgb, transfer == Transfer::Pq ? peakOf(frame) : usualPeak);
}

ColorMapping::ColorMapping(Transfer transfer, const Matrix &toSrgb, float peak)
    : m_transfer(transfer), m_toSrgb(toSrgb), m_peak(peak)
{
    fillLight();
    if (m_transfer != Transfer::Usual)
        fillRollOff();
}

void ColorMapping::fillLight()
{
    m_light.resize(codeSteps);
    for (int i = 0; i < codeSteps; ++i) {
        const double code = double(i) / (codeSteps - 1);
        double light = 0;
        if (m_transfer == Transfer::Pq)
            light = pqLight(code);
        else if (m_transfer == Transfer::Hlg)
            light = hlgSceneLight(code);
        else
            light = srgbLight(code);
        m_light[size_t(i)] = float(light);
    }
}

// BT.2390-10, 5.4.1: below the knee nothing changes, above it a Hermite spline leads to the target's white.
void ColorMapping::fillRollOff()
{
    const double peakCode = pqCode(m_peak), white = pqCode(referenceWhite) / peakCode;
    const double knee = 1.5 * white - 0.5;
    m_rollOff.resize(rollOffSteps + 1, 1.0F);
    for (int i = 1; i <= rollOffSteps; ++i) {
        const double root = double(i) / rollOffSteps, light = root * root * m_peak;
        const double code = pqCode(light) / peakCode;
        if (code < knee)
            continue;
        const double t = knee < 1 ? (code - knee) / (1 - knee) : 0;
        const double t2 = t * t, t3 = t2 * t;
        const double mapped =
            (2 * t3 - 3 * t2 + 1) * knee + (t3 - 2 * t2 + t) * (1 - knee) + (-2 * t3 + 3 * t2) * white;
        m_rollOff[size_t(i)] = float(pqLight(mapped * peakCode) / light);
    }
}

// Linear light of the frame's primaries; 1 is white.
std::array<float, 3> ColorMapping::displayed(const uint16_t *rgb) const
{
    std::array<float, 3> light;
    for (size_t i = 0; i < 3; ++i)
        light[i] = m_light[rgb[i] >> 4];
    if (m_transfer == Transfer::Usual)
        return light;
    if (m_transfer == Transfer::Hlg) {
        // The opto-optical transfer function for 1000 cd/m2: gamma 1.2 on luminance.
        const float luminance = 0.2627F * light[0] + 0.6780F * light[1] + 0.0593F * light[2];
        const float gain = usualPeak * std::pow(luminance, 0.2F);
        for (float &channel : light)
            channel *= gain;
    }
    for (float &channel : light) {
        const float part = std::min(channel / m_peak, 1.0F);
        channel = part * m_peak * m_rollOff[size_t(std::sqrt(part) * rollOffSteps + 0.5F)] / referenceWhite;
    }
    return light;
}

void ColorMapping::apply(const AVFrame &rgba, AVFrame &bgra) const
{
    const std::vector<uint8_t> &bytes = srgbBytes();
    const auto byte = [&](float red, float green, float blue, size_t row) {
        const float light = m_toSrgb[row] * red + m_toSrgb[row + 1] * green + m_toSrgb[row + 2] * blue;
        return bytes[size_t(std::clamp(light, 0.0F, 1.0F) * outputSteps + 0.5F)];
    };
    for (int y = 0; y < rgba.height; ++y) {
        const auto *from = reinterpret_cast<const uint16_t *>(rgba.data[0] + int64_t{y} * rgba.linesize[0]);
        uint8_t *to = bgra.data[0] + int64_t{y} * bgra.linesize[0];
        for (int x = 0; x < rgba.width; ++x, from += 4, to += 4) {
            const auto [red, green, blue] = displayed(from);
            to[0] = byte(red, green, blue, 6);
            to[1] = byte(red, green, blue, 3);
            to[2] = byte(red, green, blue, 0);
            to[3] = uint8_t(from[3] >> 8);
        }
    }
}

} // namespace cratewell::decode
