#include "ui/controls/backdrop.h"
#include "ui/controls/formats.h"
#include "ui/controls/soft_shadow.h"
#include "ui/thumbnail/gradient_tile.h"
#include "ui/thumbnail/waveform_drawing.h"

#include <QLocale>
#include <gtest/gtest.h>

#include <cmath>

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

const QColor darkBase(0x09, 0x09, 0x0f);
const QColor lightBase(0xf2, 0xf2, 0xf7);

BackdropLook look(const QString &style, double intensity, bool dark)
{
    return {style, intensity, QColor(0x7b, 0x5c, 0xff), dark ? darkBase : lightBase, dark};
}

int strongestDifference(const QImage &image, const QColor &color)
{
    int most = 0;
    for (int y = 0; y < image.height(); y += 3) {
        for (int x = 0; x < image.width(); x += 3) {
            const QColor found = image.pixelColor(x, y);
            most = std::max({most, std::abs(found.red() - color.red()),
                             std::abs(found.green() - color.green()), std::abs(found.blue() - color.blue())});
        }
    }
    return most;
}

// Whether a block of the dither's own size has one shade only.
bool isFlat(const QImage &image, int column, int row)
{
    const QRgb first = image.pixel(column * 8, row * 8);
    for (int pixel = 1; pixel < 64; ++pixel) {
        if (image.pixel(column * 8 + pixel % 8, row * 8 + pixel / 8) != first)
            return false;
    }
    return true;
}

template<typename Item> class Drawing : public Item
{
public:
    using Item::draw;
};

} // namespace

TEST(BackdropDrawing, FollowsStyleIntensityAndScheme)
{
    const QSize size(330, 210);
    for (const bool dark : {true, false}) {
        const QColor base = dark ? darkBase : lightBase;
        EXPECT_EQ(strongestDifference(drawBackdrop(look(u"plain"_s, 1, dark), size), base), 0);
        for (const QString &style : {u"aurora"_s, u"chrome"_s, u"midnight"_s}) {
            SCOPED_TRACE(style.toStdString() + (dark ? " dark" : " light"));
            EXPECT_LE(strongestDifference(drawBackdrop(look(style, 0, dark), size), base), 1);
            const int half = strongestDifference(drawBackdrop(look(style, 0.5, dark), size), base);
            const int full = strongestDifference(drawBackdrop(look(style, 1, dark), size), base);
            EXPECT_GT(half, 5);
            EXPECT_GT(full, half);
        }
        EXPECT_EQ(drawBackdrop(look(u"tartan"_s, 0.7, dark), size),
                  drawBackdrop(look(u"aurora"_s, 0.7, dark), size));
    }
}

// Where a shade differs by far less than a step from pixel to pixel, rounding alone would leave flat bands.
TEST(BackdropDrawing, HasNoBands)
{
    for (const QString &style : {u"aurora"_s, u"chrome"_s, u"midnight"_s}) {
        const QImage image = drawBackdrop(look(style, 0.15, true), {1320, 840});
        int flat = 0;
        for (int row = 2; row < 32; ++row) {
            for (int column = 20; column < 30; ++column)
                flat += isFlat(image, column, row) ? 1 : 0;
        }
        EXPECT_LT(flat, 30) << style.toStdString() << " of 300 blocks";
    }
}

TEST(BackdropDrawing, TakesAnySize)
{
    for (const QSize size : {QSize(1, 1), QSize(7, 900), QSize(9, 8), QSize(1041, 1)})
        EXPECT_EQ(drawBackdrop(look(u"aurora"_s, 1, true), size).size(), size);
}

TEST(SoftShadowDrawing, IsClearInsideStrongAtTheEdgeAndGoneAtTheRim)
{
    Drawing<SoftShadow> shadow;
    shadow.setBlur(20);
    shadow.setRadius(10);
    for (const qreal ratio : {1.0, 2.0}) {
        const int scale = int(ratio);
        const QImage image = shadow.draw(QSize(120, 80) * scale, ratio);
        const auto alpha = [&](int x, int y) { return qAlpha(image.pixel(x * scale, y * scale)); };
        EXPECT_EQ(alpha(60, 40), 0);
        EXPECT_EQ(alpha(60, 22), 0);
        EXPECT_GT(alpha(60, 18), 20);
        EXPECT_GT(alpha(60, 18), alpha(60, 10));
        EXPECT_GT(alpha(60, 10), alpha(60, 4));
        EXPECT_LE(alpha(60, 0), 1);
        EXPECT_LE(alpha(0, 0), 0);
    }
    shadow.setDrop(8);
    const QImage image = shadow.draw({120, 80}, 1);
    EXPECT_GT(qAlpha(image.pixel(60, 65)), qAlpha(image.pixel(60, 14)));
}

TEST(GradientTileDrawing, RunsFromCornerToCornerWithRoundCorners)
{
    Drawing<GradientTile> tile;
    tile.setStart(Qt::red);
    tile.setEnd(Qt::blue);
    tile.setRadius(6);
    const QImage image = tile.draw({44, 44}, 2);
    EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0);
    EXPECT_EQ(qAlpha(image.pixel(22, 22)), 255);
    EXPECT_GT(qRed(image.pixel(6, 6)), qBlue(image.pixel(6, 6)) + 100);
    EXPECT_GT(qBlue(image.pixel(37, 37)), qRed(image.pixel(37, 37)) + 100);

    tile.setDirection(GradientTile::Down);
    tile.setRim(Qt::white);
    const QImage upright = tile.draw({44, 44}, 2);
    EXPECT_EQ(upright.pixel(8, 12), upright.pixel(36, 12));
    EXPECT_NE(upright.pixel(20, 8), upright.pixel(20, 36));
    EXPECT_EQ(upright.pixel(22, 0), QColor(Qt::white).rgb());
}

TEST(WaveformDrawing, DrawsTheStylesToTheirShape)
{
    WaveformPeaks peaks(240, 0.0F);
    std::fill(peaks.begin() + 120, peaks.end(), 1.0F);
    const auto foreground = [&](const QString &style, QRect where) {
        QImage image(200, 100, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        drawWaveform(painter, image.rect(), peaks, waveStyleFromRawValue(style), Qt::white, 1);
        painter.end();
        double sum = 0;
        for (int y = where.top(); y <= where.bottom(); ++y) {
            for (int x = where.left(); x <= where.right(); ++x)
                sum += qAlpha(image.pixel(x, y)) / 255.0;
        }
        return sum / (where.width() * where.height());
    };
    const QRect loudTop(110, 5, 80, 20), loudBottom(110, 75, 80, 20), quietTop(10, 5, 80, 40),
        quietMiddle(10, 48, 80, 4);
    for (const auto &style : {u"mirror"_s, u"bars"_s, u"line"_s}) {
        EXPECT_GT(foreground(style, loudTop), 0.3) << style.toStdString();
        EXPECT_GT(foreground(style, loudBottom), 0.3) << style.toStdString();
        EXPECT_EQ(foreground(style, quietTop), 0) << style.toStdString();
    }
    EXPECT_GT(foreground(u"mirror"_s, quietMiddle), 0.1) << "silence is a line, not a hole";
    EXPECT_GT(foreground(u"line"_s, quietMiddle), 0.1);
    EXPECT_EQ(foreground(u"bars"_s, quietMiddle), 0);
    EXPECT_GT(foreground(u"bars"_s, {10, 96, 80, 4}), 0.1);
    EXPECT_EQ(waveStyleFromRawValue(u"no such style"_s), WaveStyle::Mirror);
    EXPECT_LT(foreground(u"mirror"_s, loudTop), 0.8) << "bars have gaps";
}

TEST(ByteText, IsDecimalAndRoundsIntoTheNextUnit)
{
    const std::pair<qint64, QLatin1StringView> cases[]{{-5, "0 bytes"_L1},
                                                       {0, "0 bytes"_L1},
                                                       {1, "1 byte"_L1},
                                                       {999, "999 bytes"_L1},
                                                       {1000, "1 KB"_L1},
                                                       {987'600, "988 KB"_L1},
                                                       {999'499, "999 KB"_L1},
                                                       {999'500, "1 MB"_L1},
                                                       {48'200'000, "48.2 MB"_L1},
                                                       {1'280'000'000, "1.28 GB"_L1},
                                                       {2'500'000'000'000, "2.5 TB"_L1},
                                                       {5'000'000'000'000'000, "5000 TB"_L1}};
    QLocale::setDefault(QLocale::c());
    for (const auto &[bytes, text] : cases)
        EXPECT_EQ(byteText(bytes), text) << bytes;
}

} // namespace cratewell
