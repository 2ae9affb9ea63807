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
    double x; // of the icon's side
    double y;
    QColor color;
    int tolerance;
};

void expectPlaces(const QImage &icon, const std::vector<Place> &places)
{
    for (const Place &place : places) {
        SCOPED_TRACE(testing::Message() << place.x << ", " << place.y);
        const QColor found = icon.pixelColor(int(place.x * icon.width()), int(place.y * icon.height()));
        EXPECT_NEAR(found.red(), place.color.red(), place.tolerance);
        EXPECT_NEAR(found.green(), place.color.green(), place.tolerance);
        EXPECT_NEAR(found.blue(), place.color.blue(), place.tolerance);
        EXPECT_NEAR(found.alpha(), place.color.alpha(), place.tolerance);
    }
}

// The star's gradient runs over its diagonal; at the center it is at 0.5. On the vertical through the center
// the star's upper point lies at 0.25 of the diagonal, its lower one at 0.75.
TEST(IconRenderer, StarCarriesTheMetalOfItsStyle)
{
    const QColor centers[]{0x6e717c, 0x7b5cff, 0x6e717c, 0x9a6a1e, 0x6e717c};
    for (const IconStyle style : allIconStyles) {
        EXPECT_EQ(iconStyleFromRawValue(rawValue(style)), style);
        SCOPED_TRACE(qPrintable(rawValue(style)));
        const Place center{0.5, 0.5, centers[size_t(style)], 4};
        expectPlaces(renderIcon(style, size), {center});
        expectPlaces(renderStar(style, {size, size}), {center, {0.2, 0.2, Qt::transparent, 0}});
    }
    EXPECT_EQ(iconStyleFromRawValue(u"silver"_s), IconStyle::Chrome) << "for an unknown text";
    expectPlaces(renderStar(IconStyle::Gold, {size, size}),
                 {{0.375, 0.375, QColor(0xeec16b), 4}, {0.5, 0.02, QColor(0xffdc96), 8}});
}

TEST(IconRenderer, PanelIsLaidOutFromTopToBottom)
{
    const QImage icon = renderIcon(IconStyle::Chrome, size);
    // Away from grid lines: they lie every 40 pixels from the panel's edges. The sheen is white, at the top
    // half covering, on the panel's first color.
    const double sheen = 0.5 * (1 - 0.025 / 0.4);
    const auto under = [&](int below) { return int(std::lround(255 * sheen + below * (1 - sheen))); };
    expectPlaces(icon, {{0.02, 0.5, Qt::transparent, 3},
                        {0.11, 0.11, Qt::transparent, 40}, // the corner is round
                        {0.2, 0.87, QColor(0x0b0a11), 8},  // near the base color
                        {0.25, 0.125, {under(0x1b), under(0x14), under(0x2e)}, 14}});
    // The shadow lies 4.8 pixels lower than the panel and fades with a standard deviation of 6.
    EXPECT_NEAR(icon.pixelColor(size / 2, 367).alpha(), 255 * 0.45 * 0.326, 6);
    EXPECT_NEAR(icon.pixelColor(size / 2, 33).alpha(), 255 * 0.45 * 0.030, 3);

    // Grid lines of one pixel centered on a pixel border tint the two pixels beside it.
    const QImage dark = renderIcon(IconStyle::Midnight, size);
    const auto brightness = [&dark](int x, int y) { return dark.pixelColor(x, y).lightness(); };
    EXPECT_GT(brightness(80, 335), brightness(88, 335));
    EXPECT_GT(brightness(55, 320), brightness(55, 328));
    const QColor glow = renderIcon(IconStyle::Gold, size).pixelColor(int(0.56 * size), int(0.68 * size));
    EXPECT_TRUE(glow.red() > glow.green() && glow.green() > glow.blue() && glow.lightness() > 40);
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
