#include "ui/controls/backdrop.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <vector>

using namespace Qt::StringLiterals;

namespace cratewell {

namespace {

// Linear in the screen's own values, 0 to 255 a channel.
struct Shade
{
    float red = 0;
    float green = 0;
    float blue = 0;
};

Shade shadeOf(const QColor &color)
{
    return {float(color.redF()) * 255, float(color.greenF()) * 255, float(color.blueF()) * 255};
}

Shade mixed(const Shade &from, const Shade &to, float amount)
{
    return {from.red + (to.red - from.red) * amount, from.green + (to.green - from.green) * amount,
            from.blue + (to.blue - from.blue) * amount};
}

// An ellipse of light, in fractions of the window; strengths at full intensity.
struct Glow
{
    float x;
    float y;
    float radiusX;
    float radiusY;
    float darkStrength;
    float lightStrength;
};

// In the order accent, cyan, blue, pink.
constexpr std::array auroraGlows{
    Glow{0.15f, -0.02f, 0.50f, 0.44f, 0.72f, 0.40f},
    Glow{0.66f, -0.03f, 0.38f, 0.34f, 0.25f, 0.30f},
    Glow{0.31f, 1.03f, 0.33f, 0.30f, 0.33f, 0.23f},
    Glow{0.97f, 1.02f, 0.48f, 0.52f, 0.50f, 0.33f},
};

// Falls from 1 in the middle to 0 at the rim, without an edge at the rim.
float glowAt(const Glow &glow, float x, float y)
{
    const float distance = std::hypot((x - glow.x) / glow.radiusX, (y - glow.y) / glow.radiusY);
    const float rest = std::max(0.f, 1 - distance);
    return rest * (0.55f + 0.45f * rest);
}

struct Stop
{
    float place;
    QRgb color;
};

Shade along(std::span<const Stop> stops, float place)
{
    const auto next = std::ranges::find_if(stops, [place](const Stop &stop) { return stop.place >= place; });
    if (next == stops.begin())
        return shadeOf(QColor(stops.front().color));
    if (next == stops.end())
        return shadeOf(QColor(stops.back().color));
    const Stop &from = *std::prev(next);
    const float amount = (place - from.place) / (next->place - from.place);
    return mixed(shadeOf(QColor(from.color)), shadeOf(QColor(next->color)),
                 amount * amount * (3 - 2 * amount));
}

constexpr std::array chromeDark{Stop{0.f, 0xff3a3d47}, Stop{0.34f, 0xff1b1d23}, Stop{0.46f, 0xff2b2e36},
                                Stop{0.56f, 0xff121318}, Stop{1.f, 0xff23252c}};
constexpr std::array chromeLight{Stop{0.f, 0xffffffff}, Stop{0.34f, 0xffd5d9e2}, Stop{0.46f, 0xffeceff4},
                                 Stop{0.56f, 0xffc9ced9}, Stop{1.f, 0xffeef0f5}};
constexpr std::array midnightDark{Stop{0.f, 0xff14226b}, Stop{0.45f, 0xff090f33}, Stop{1.f, 0xff030409}};
constexpr std::array midnightLight{Stop{0.f, 0xffb9cafc}, Stop{0.45f, 0xffdde5fd}, Stop{1.f, 0xfff4f5fa}};

Shade auroraAt(const BackdropLook &look, float x, float y)
{
    const std::array colors{look.accent, QColor(0x2f, 0xd6, 0xff), QColor(0x4a, 0x5c, 0xff),
                            QColor(0xff, 0x4e, 0xcd)};
    Shade shade = shadeOf(look.base);
    for (size_t i = 0; i < auroraGlows.size(); ++i) {
        const Glow &glow = auroraGlows[i];
        const float strength = look.dark ? glow.darkStrength : glow.lightStrength;
        shade = mixed(shade, shadeOf(colors[i]), glowAt(glow, x, y) * strength * float(look.intensity));
    }
    return shade;
}

Shade chromeAt(const BackdropLook &look, float x, float y)
{
    const Shade metal = along(look.dark ? std::span<const Stop>(chromeDark) : chromeLight, y);
    // The sheen lies across, brighter towards the upper right.
    const float across = (x - 0.62f) + 0.55f * (y - 0.3f);
    const float sheen = std::exp(-across * across / 0.05f) * (look.dark ? 0.07f : 0.45f);
    return mixed(shadeOf(look.base), mixed(metal, {255, 255, 255}, sheen), float(look.intensity));
}

Shade midnightAt(const BackdropLook &look, float x, float y)
{
    const Shade sky = along(look.dark ? std::span<const Stop>(midnightDark) : midnightLight, y);
    const Glow moon{0.78f, -0.05f, 0.55f, 0.6f, 0.22f, 0.5f};
    const Shade moonlight = look.dark ? Shade{92, 122, 255} : Shade{255, 255, 255};
    const float strength = glowAt(moon, x, y) * (look.dark ? moon.darkStrength : moon.lightStrength);
    return mixed(shadeOf(look.base), mixed(sky, moonlight, strength), float(look.intensity));
}

using Painter = Shade (*)(const BackdropLook &, float x, float y);

Painter painterOf(const QString &style)
{
    if (style == "chrome"_L1)
        return chromeAt;
    if (style == "midnight"_L1)
        return midnightAt;
    return auroraAt;
}

// The threshold matrix that spreads rounding over 8 x 8 pixels, in fractions of one step.
constexpr auto ditherMatrix = [] {
    std::array<float, 64> matrix{};
    for (unsigned y = 0; y < 8; ++y) {
        for (unsigned x = 0; x < 8; ++x) {
            const unsigned mix = x ^ y;
            unsigned rank = 0;
            for (unsigned bit = 0; bit < 3; ++bit)
                rank |= (((y >> bit) & 1u) << (4 - 2 * bit)) | (((mix >> bit) & 1u) << (5 - 2 * bit));
            matrix[y * 8 + x] = (float(rank) + 0.5f) / 64;
        }
    }
    return matrix;
}();

// Shades change slowly: they are worked out every `cell` pixels and blended between.
constexpr int cell = 8;

void writeCell(QRgb *pixels, int count, const Shade &from, const Shade &to, const float *dither)
{
    std::array<QRgb, cell> whole;
    for (int i = 0; i < cell; ++i) {
        const Shade shade = mixed(from, to, float(i) / cell);
        const auto channel = [&](float value) { return quint32(int(value + dither[i])); };
        whole[size_t(i)] =
            0xff000000 | channel(shade.red) << 16 | channel(shade.green) << 8 | channel(shade.blue);
    }
    std::copy_n(whole.begin(), count, pixels);
}

} // namespace

QImage drawBackdrop(const BackdropLook &given, QSize pixels)
{
    BackdropLook look = given;
    look.intensity = std::clamp(look.intensity, 0.0, 1.0);
    QImage image(pixels, QImage::Format_RGB32);
    if (image.isNull())
        return image;
    if (look.style == "plain"_L1) {
        image.fill(look.base);
        return image;
    }
    const Painter painter = painterOf(look.style);
    const int columns = (pixels.width() + cell - 1) / cell + 1;
    const auto workOut = [&](std::vector<Shade> &row, int line) {
        for (int column = 0; column < columns; ++column)
            row[size_t(column)] = painter(look, float(column * cell) / float(pixels.width()),
                                          float(line) / float(pixels.height()));
    };
    std::vector<Shade> above(static_cast<size_t>(columns));
    std::vector<Shade> below(above.size());
    std::vector<Shade> row(above.size());
    workOut(below, 0);
    for (int y = 0; y < pixels.height(); ++y) {
        if (y % cell == 0) {
            std::swap(above, below);
            workOut(below, y + cell);
        }
        for (size_t column = 0; column < row.size(); ++column)
            row[column] = mixed(above[column], below[column], float(y % cell) / cell);
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < pixels.width(); x += cell) {
            const size_t column = size_t(x / cell);
            writeCell(line + x, std::min(cell, pixels.width() - x), row[column], row[column + 1],
                      &ditherMatrix[size_t(y % 8) * 8]);
        }
    }
    return image;
}

QImage Backdrop::draw(QSize pixels, qreal) const
{
    return drawBackdrop(m_look, pixels);
}

} // namespace cratewell
