#include "ui/shell/icon_renderer.h"

#include "support/wait.h"
#include "ui/shell/icon_loader.h"

#include <QColor>
#include <QSemaphore>
#include <cmath>
#include <gtest/gtest.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;

constexpr int size = 400; // the panel is 40 to 360, the star 94.4 to 305.6

struct Place
{
    const char *what;
    double x; // of the icon's side
    double y;
    QColor color;
    int tolerance;
};

int distance(const QColor &a, const QColor &b)
{
    return std::max({std::abs(a.red() - b.red()), std::abs(a.green() - b.green()),
                     std::abs(a.blue() - b.blue()), std::abs(a.alpha() - b.alpha())});
}

void expectPlaces(const QImage &icon, const std::vector<Place> &places)
{
    for (const Place &place : places) {
        const QColor found = icon.pixelColor(int(place.x * icon.width()), int(place.y * icon.height()));
        EXPECT_LE(distance(found, place.color), place.tolerance)
            << place.what << ": " << qPrintable(found.name(QColor::HexArgb)) << " instead of "
            << qPrintable(place.color.name(QColor::HexArgb));
    }
}

// Straight source-over of one translucent layer on an opaque one.
QColor over(const QColor &layer, double opacity, const QColor &below)
{
    const auto mix = [opacity](int a, int b) { return int(std::lround(a * opacity + b * (1 - opacity))); };
    return QColor(mix(layer.red(), below.red()), mix(layer.green(), below.green()),
                  mix(layer.blue(), below.blue()));
}

TEST(IconStyle, AnUnknownTextIsChromeAndEveryNameLeadsBack)
{
    for (const IconStyle style : allIconStyles)
        EXPECT_EQ(iconStyleFromRawValue(rawValue(style)), style);
    for (const QString &text : {u""_s, u"Gold"_s, u" gold"_s, u"silver"_s})
        EXPECT_EQ(iconStyleFromRawValue(text), IconStyle::Chrome) << qPrintable(text);
    EXPECT_EQ(rawValue(IconStyle::Midnight), u"midnight"_s);
}

TEST(IconRenderer, SizesThatMakeNoBitmapGiveNone)
{
    for (const int impossible : {0, -5, 1'000'000})
        EXPECT_TRUE(renderIcon(IconStyle::Chrome, impossible).isNull()) << impossible;
    for (const int possible : {1, 2, 16, 63})
        EXPECT_EQ(renderIcon(IconStyle::Gold, possible).size(), QSize(possible, possible));
}

// The star's gradient runs over its diagonal; at the center it is at 0.5. On the vertical through the center
// the star's upper point lies at 0.25 of the diagonal, its lower one at 0.75.
TEST(IconRenderer, StarCarriesTheMetalOfItsStyle)
{
    const QColor centres[]{0x6e717c, 0x7b5cff, 0x6e717c, 0x9a6a1e, 0x6e717c};
    for (const IconStyle style : allIconStyles) {
        const QColor center = centres[size_t(style)];
        SCOPED_TRACE(qPrintable(rawValue(style)));
        expectPlaces(renderIcon(style, size), {{"center", 0.5, 0.5, center, 4}});
        expectPlaces(renderStar(style, {size, size}),
                     {{"center", 0.5, 0.5, center, 4}, {"outside", 0.2, 0.2, Qt::transparent, 0}});
    }
    expectPlaces(renderStar(IconStyle::Gold, {size, size}),
                 {{"one third down the diagonal", 0.375, 0.375, QColor(0xeec16b), 4},
                  {"upper point, a quarter of the way", 0.5, 0.02, QColor(0xffdc96), 8}});
}

TEST(IconRenderer, PanelIsLaidOutFromTopToBottom)
{
    const QImage icon = renderIcon(IconStyle::Chrome, size);
    // Away from grid lines: they lie every 40 pixels from the panel's edges.
    expectPlaces(icon, {{"outside the panel", 0.02, 0.5, Qt::transparent, 3},
                        {"in the rounded corner", 0.11, 0.11, Qt::transparent, 40},
                        {"bottom left of the face, near the base color", 0.2, 0.87, QColor(0x0b0a11), 8},
                        {"under the sheen at the top", 0.25, 0.125,
                         over(Qt::white, 0.5 * (1 - 0.025 / 0.4), QColor(0x1b142e)), 14}});
    // The shadow lies 4.8 pixels lower than the panel and fades with a standard deviation of 6.
    EXPECT_NEAR(icon.pixelColor(size / 2, 367).alpha(), 255 * 0.45 * 0.326, 6);
    EXPECT_NEAR(icon.pixelColor(size / 2, 33).alpha(), 255 * 0.45 * 0.030, 3);
}

TEST(IconRenderer, GridLinesLieEveryEighthButNotOnTheFarEdges)
{
    const QImage icon = renderIcon(IconStyle::Midnight, size);
    // Lines of one pixel centered on a pixel border tint the two pixels beside it.
    const auto brightness = [&icon](int x, int y) { return icon.pixelColor(x, y).lightness(); };
    for (const int line : {80, 120}) {
        EXPECT_GT(brightness(line, 335), brightness(line + 8, 335)) << line;
        EXPECT_GT(brightness(55, 360 - (line - 40)), brightness(55, 360 - (line - 40) + 8)) << line;
    }
}

TEST(IconRenderer, GlowSurroundsTheStarInItsColor)
{
    const auto beside = [](IconStyle style) {
        return renderIcon(style, size).pixelColor(int(0.56 * size), int(0.68 * size));
    };
    const QColor holo = beside(IconStyle::Holo);
    const QColor gold = beside(IconStyle::Gold);
    EXPECT_GT(holo.red(), holo.green());
    EXPECT_TRUE(gold.red() > gold.green() && gold.green() > gold.blue());
    EXPECT_GT(std::min(holo.lightness(), gold.lightness()), 40);
}

TEST(IconLoader, AnOlderIconThatIsReadyLaterDoesNotWin)
{
    QSemaphore begun;
    std::array<QSemaphore, allIconStyles.size()> mayEnd;
    IconLoader loader([&](IconStyle style) {
        begun.release();
        mayEnd[size_t(style)].acquire();
        return QImage(1 + int(style), 1, QImage::Format_RGB32);
    });
    std::vector<IconStyle> shown;
    QObject::connect(&loader, &IconLoader::ready,
                     [&](const QImage &icon) { shown.push_back(IconStyle(icon.width() - 1)); });
    const auto begin = [&](IconStyle style) {
        loader.request(style);
        return begun.tryAcquire(1, 10'000);
    };
    const auto end = [&](IconStyle style) { mayEnd[size_t(style)].release(); };

    EXPECT_TRUE(begin(IconStyle::Gold) && begin(IconStyle::Holo));
    end(IconStyle::Holo);
    EXPECT_TRUE(test::waitUntil([&] { return shown == std::vector{IconStyle::Holo}; }));
    EXPECT_TRUE(begin(IconStyle::Light));
    end(IconStyle::Gold);
    EXPECT_TRUE(begin(IconStyle::Midnight)) << "on the thread that had Gold, whose answer is on its way now";
    end(IconStyle::Light);
    end(IconStyle::Midnight);
    EXPECT_TRUE(test::waitUntil([&] { return shown.size() >= 2; }));
    EXPECT_EQ(shown, (std::vector{IconStyle::Holo, IconStyle::Midnight}));
}

} // namespace
} // namespace cratewell
