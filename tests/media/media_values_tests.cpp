#include "made_media.h"
#include "media/media.h"
#include "media/previews/sunset_still.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace cratewell::test {

using namespace Qt::StringLiterals;

TEST(TimeString, CountsTenthsBelowTenSecondsAndMinutesAbove)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const std::pair<double, QString> cases[]{
        {0, u"0.0s"_s},         {9.94, u"9.9s"_s},         {9.96, u"10.0s"_s},
        {0.25, u"0.2s"_s}, // as printf rounds ties
        {0.75, u"0.8s"_s},      {10, u"0:10"_s},           {75.9, u"1:15"_s},
        {3725, u"62:05"_s},     {-1, u"0:00"_s},           {infinity, u"0:00"_s},
        {-infinity, u"0:00"_s}, {std::nan(""), u"0:00"_s}, {1e300, u"150000000000000:00"_s}};
    for (const auto &[seconds, text] : cases)
        EXPECT_EQ(timeString(seconds), text) << seconds;
}

// The colors follow from the drawing's own numbers at places where a single shape decides.
TEST(SunsetStill, HasItsColorsAtKnownPlaces)
{
    const QImage image = sunsetStill({1600, 900});
    struct Place
    {
        double x, y; // parts of width and height, from the bottom left
        QRgb color;
    };
    const Place places[]{{0.001, 0.999, qRgb(41, 46, 107)}, // the first color of the sky
                         {0.05, 0.73, qRgb(158, 92, 158)},  // its second, where the glow does not reach
                         {0.62, 0.60, qRgb(238, 163, 119)}, // the glow at 0.225 of its radius, over the sky
                         {0.60, 0.42, qRgb(107, 64, 115)},  // the ranges of hills, back to front
                         {0.90, 0.42, qRgb(64, 36, 77)},     {0.80, 0.05, qRgb(28, 18, 38)},
                         {0.305, 0.40, qRgb(219, 153, 122)}, // the disc
                         {0.305, 0.20, qRgb(20, 20, 31)},    // the bar
                         {0.272, 0.02, qRgb(20, 20, 31)},    {0.338, 0.36, qRgb(20, 20, 31)}};
    for (const Place &place : places) {
        const QRgb found = image.pixel(int(place.x * 1600), int((1 - place.y) * 900));
        EXPECT_TRUE(isNear(found, place.color, 2)) << place.x << ' ' << place.y;
        EXPECT_EQ(qAlpha(found), 255) << place.x << ' ' << place.y;
    }
    EXPECT_TRUE(sunsetStill({0, 10}).isNull());
}

} // namespace cratewell::test
