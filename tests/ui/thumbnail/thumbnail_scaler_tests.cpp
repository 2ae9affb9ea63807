#include "ui/thumbnail/thumbnail_scaler.h"

#include "support/wait.h"
#include "ui/thumbnail/alpha_mask.h"

#include <QPainterPath>
#include <QSet>
#include <gtest/gtest.h>

namespace cratewell {
namespace {

QImage stripes(QSize size, Qt::Orientation orientation)
{
    // Red, green and blue thirds across the longer side.
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const int third = orientation == Qt::Horizontal ? 3 * x / size.width() : 3 * y / size.height();
            image.setPixel(x, y, third == 0 ? 0xffff0000 : third == 1 ? 0xff00ff00 : 0xff0000ff);
        }
    }
    return image;
}

TEST(ScaledThumbnail, FillsTheShapeWithTheMiddleOfThePicture)
{
    const QImage wide = scaledThumbnail(stripes({300, 100}, Qt::Horizontal), {{50, 50}});
    const QImage tall = scaledThumbnail(stripes({100, 300}, Qt::Vertical), {{80, 40}});
    for (const QImage &cut : {wide, tall}) {
        EXPECT_EQ(cut.pixelColor(cut.width() / 2, cut.height() / 2), QColor(Qt::green));
        EXPECT_EQ(cut.pixelColor(4, 4), QColor(Qt::green));
        EXPECT_EQ(cut.pixelColor(cut.width() - 5, cut.height() - 5), QColor(Qt::green));
    }
    EXPECT_EQ(wide.size(), QSize(50, 50));
    EXPECT_EQ(tall.size(), QSize(80, 40));
}

TEST(ScaledThumbnail, ShowsTheWholePictureWithMarginsWhenAsked)
{
    const QImage tall =
        scaledThumbnail(stripes({100, 300}, Qt::Vertical), {{90, 60}, 0, PictureFit::Contain});
    ASSERT_EQ(tall.size(), QSize(90, 60));
    EXPECT_EQ(tall.pixelColor(45, 5), QColor(Qt::red));
    EXPECT_EQ(tall.pixelColor(45, 30), QColor(Qt::green));
    EXPECT_EQ(tall.pixelColor(45, 55), QColor(Qt::blue));
    EXPECT_EQ(tall.pixelColor(20, 30), QColor(Qt::black));
    EXPECT_EQ(tall.pixelColor(70, 30), QColor(Qt::black));
}

TEST(ScaledThumbnail, CutsCornersAndLaysWhatIsTransparentOnACheckerboard)
{
    QImage picture(64, 64, QImage::Format_ARGB32);
    picture.fill(QColor(200, 100, 50, 128));
    const QImage cut = scaledThumbnail(picture, {{64, 64}, 16});
    EXPECT_EQ(cut.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(cut.pixelColor(63, 63).alpha(), 0);
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

TEST(ScaledThumbnail, NothingComesFromNothing)
{
    EXPECT_TRUE(scaledThumbnail({}, {{10, 10}}).isNull());
    EXPECT_TRUE(scaledThumbnail(stripes({3, 3}, Qt::Horizontal), {{0, 10}}).isNull());
    EXPECT_EQ(scaledThumbnail(stripes({1, 1000}, Qt::Vertical), {{100, 10}}).size(), QSize(100, 10));
}

TEST(ThumbnailScaler, AnswersOnceAndRemembers)
{
    ThumbnailScaler scaler;
    const QImage picture = stripes({300, 100}, Qt::Horizontal);
    const ThumbnailShape shape{{40, 25}, 4};
    EXPECT_TRUE(scaler.ready(picture, shape).isNull());

    int answers = 0;
    const auto ticket = scaler.cut(picture, shape, [&](const QImage &cut) {
        ++answers;
        EXPECT_EQ(cut.size(), shape.size);
    });
    ASSERT_TRUE(test::waitUntil([&] { return answers == 1; }));
    EXPECT_FALSE(scaler.ready(picture, shape).isNull());
    EXPECT_TRUE(scaler.ready(picture, {{40, 25}, 5}).isNull());
    EXPECT_TRUE(scaler.ready(stripes({300, 100}, Qt::Horizontal), shape).isNull()) << "another picture";
}

TEST(ThumbnailScaler, DroppedTicketIsNeverAnswered)
{
    ThumbnailScaler scaler;
    const QImage picture = stripes({600, 400}, Qt::Horizontal);
    bool dropped = false;
    bool last = false;
    auto first = scaler.cut(picture, {{64, 40}}, [&](const QImage &) { dropped = true; });
    first.reset();
    const auto second = scaler.cut(picture, {{32, 20}}, [&](const QImage &) { last = true; });
    ASSERT_TRUE(test::waitUntil([&] { return last; }));
    EXPECT_FALSE(dropped);
    // One that drops itself while it is being answered.
    ThumbnailScaler::Ticket own;
    bool answered = false;
    own = scaler.cut(picture, {{16, 10}}, [&](const QImage &) {
        own.reset();
        answered = true;
    });
    ASSERT_TRUE(test::waitUntil([&] { return answered; }));
}

TEST(AlphaMask, BlurSpreadsLikeAGaussianAndKeepsTheAmount)
{
    QImage mask(101, 101, QImage::Format_Alpha8);
    mask.fill(0);
    for (int y = 40; y < 61; ++y)
        std::fill_n(mask.scanLine(y) + 40, 21, uchar(255));
    for (const double sigma : {1.5, 4.0, 9.0}) {
        SCOPED_TRACE(sigma);
        const QImage soft = blurred(mask, sigma);
        double before = 0;
        double after = 0;
        double spread = 0; // variance along x added by the blur
        for (int y = 0; y < 101; ++y) {
            for (int x = 0; x < 101; ++x) {
                before += mask.constScanLine(y)[x];
                after += soft.constScanLine(y)[x];
                spread += soft.constScanLine(y)[x] * (x - 50.0) * (x - 50.0);
            }
        }
        EXPECT_NEAR(after / before, 1.0, 0.03);
        EXPECT_NEAR(spread / after - (21.0 * 21.0 - 1) / 12, sigma * sigma, 0.12 * sigma * sigma + 1);
        EXPECT_EQ(soft.constScanLine(30)[50], soft.constScanLine(50)[30]) << "the same in both directions";
    }
    EXPECT_EQ(blurred(mask, 0), mask);
}

} // namespace
} // namespace cratewell
