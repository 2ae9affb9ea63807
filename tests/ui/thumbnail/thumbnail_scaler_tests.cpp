#include "ui/thumbnail/thumbnail_scaler.h"

#include "support/wait.h"

#include <QSet>
#include <gtest/gtest.h>

namespace cratewell {
namespace {

// Red, green and blue thirds across the longer side.
QImage stripes(int width, int height)
{
    QImage thirds(3, 1, QImage::Format_RGB32);
    for (int third = 0; third < 3; ++third)
        thirds.setPixelColor(third, 0, std::array{Qt::red, Qt::green, Qt::blue}[size_t(third)]);
    if (height > width)
        thirds = thirds.transformed(QTransform().rotate(90));
    return thirds.scaled(width, height);
}

TEST(ScaledThumbnail, FillsTheShapeWithTheMiddleOfThePictureOrShowsAllOfIt)
{
    const struct
    {
        QImage picture;
        ThumbnailShape shape;
        std::vector<std::pair<QPoint, QColor>> pixels;
    } cases[] = {
        {stripes(300, 100), {{50, 50}}, {{{4, 4}, Qt::green}, {{45, 45}, Qt::green}}},
        {stripes(100, 300), {{80, 40}}, {{{4, 4}, Qt::green}, {{75, 35}, Qt::green}}},
        {stripes(1, 1000), {{100, 10}}, {{{50, 5}, Qt::green}}},
        {stripes(100, 300),
         {{90, 60}, 0, PictureFit::Contain},
         {{{45, 5}, Qt::red}, {{45, 55}, Qt::blue}, {{20, 30}, Qt::black}, {{70, 30}, Qt::black}}},
    };
    for (const auto &[picture, shape, pixels] : cases) {
        const QImage cut = scaledThumbnail(picture, shape);
        ASSERT_EQ(cut.size(), shape.size);
        for (const auto &[point, color] : pixels)
            EXPECT_EQ(cut.pixelColor(point), color) << &pixels - &cases[0].pixels;
    }
}

TEST(ScaledThumbnail, CutsCornersAndLaysWhatIsTransparentOnACheckerboard)
{
    QImage picture(64, 64, QImage::Format_ARGB32);
    picture.fill(QColor(200, 100, 50, 128));
    const QImage cut = scaledThumbnail(picture, {{64, 64}, 16});
    EXPECT_EQ(cut.pixelColor(0, 0).alpha(), 0);
    EXPECT_GT(cut.pixelColor(5, 4).alpha(), 40) << "the corner is round, not square";
    QSet<int> tones;
    for (const QPoint inside : {QPoint(30, 30), QPoint(34, 30), QPoint(32, 1)}) {
        const QColor seen = cut.pixelColor(inside);
        EXPECT_EQ(seen.alpha(), 255);
        EXPECT_NEAR(seen.red(), 200 * 0.502 + 0x1b * 0.498, 4);
        tones << seen.red();
    }
    EXPECT_EQ(tones.size(), 2) << "neighboring squares differ";
}

TEST(ThumbnailScaler, AnswersWhoStillWaitsAndRemembers)
{
    ThumbnailScaler scaler;
    const QImage picture = stripes(600, 400);
    const ThumbnailShape shape{{40, 25}, 4};
    EXPECT_TRUE(scaler.ready(picture, shape).isNull());
    bool dropped = false;
    auto first = scaler.cut(picture, {{64, 40}}, [&](const QImage &) { dropped = true; });
    first.reset();
    QSize answer;
    ThumbnailScaler::Ticket own;
    own = scaler.cut(picture, shape, [&](const QImage &cut) {
        own.reset(); // while it is being answered
        answer = cut.size();
    });
    ASSERT_TRUE(test::waitUntil([&] { return answer == shape.size; }));
    EXPECT_FALSE(dropped);
    EXPECT_FALSE(scaler.ready(picture, shape).isNull());
    EXPECT_TRUE(scaler.ready(picture, {{40, 25}, 5}).isNull());
    EXPECT_TRUE(scaler.ready(stripes(600, 400), shape).isNull()) << "another picture";
}

} // namespace
} // namespace cratewell
