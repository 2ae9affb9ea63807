#include "ui/controls/backdrop.h"
#include "ui/controls/formats.h"
#include "ui/thumbnail/waveform_drawing.h"

#include <QLocale>
#include <gtest/gtest.h>

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

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

} // namespace

TEST(BackdropDrawing, FollowsStyleIntensityAndSchemeWithoutBands)
{
    for (const bool dark : {true, false}) {
        const QColor base = dark ? QColor(0x09, 0x09, 0x0f) : QColor(0xf2, 0xf2, 0xf7);
        const auto drawn = [&](const QString &style, double intensity) {
            return drawBackdrop({style, intensity, QColor(0x7b, 0x5c, 0xff), base, dark}, {660, 420});
        };
        const auto light = [&](const QString &style, double intensity) {
            return strongestDifference(drawn(style, intensity), base);
        };
        EXPECT_EQ(light(u"plain"_s, 1), 0);
        for (const QString &style : {u"aurora"_s, u"chrome"_s, u"midnight"_s}) {
            SCOPED_TRACE(style.toStdString() + (dark ? " dark" : " light"));
            EXPECT_LE(light(style, 0), 1);
            EXPECT_GT(light(style, 0.5), 5);
            EXPECT_GT(light(style, 1), light(style, 0.5));
            // Rounding alone would leave runs of one shade.
            const QImage faint = drawn(style, 0.15);
            int changes = 0;
            for (int x = 160; x < 260; ++x)
                changes += int(faint.pixel(x, 40) != faint.pixel(x + 1, 40));
            EXPECT_GT(changes, 30);
        }
    }
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
        const QImage average =
            image.copy(where).scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        return qAlpha(average.pixel(0, 0)) / 255.0;
    };
    const QRect loudTop(110, 5, 80, 20), loudBottom(110, 75, 80, 20), quietTop(10, 5, 80, 40);
    for (const auto &style : {u"mirror"_s, u"bars"_s, u"line"_s}) {
        SCOPED_TRACE(style.toStdString());
        EXPECT_GT(foreground(style, loudTop), 0.3);
        EXPECT_GT(foreground(style, loudBottom), 0.3);
        EXPECT_EQ(foreground(style, quietTop), 0);
        // Silence is a line, not a hole.
        EXPECT_GT(foreground(style, {10, style == u"bars"_s ? 96 : 48, 80, 4}), 0.1);
    }
    EXPECT_EQ(waveStyleFromRawValue(u"no such style"_s), WaveStyle::Mirror);
    EXPECT_LT(foreground(u"mirror"_s, loudTop), 0.8) << "bars have gaps";
}

TEST(ByteText, IsDecimalAndRoundsIntoTheNextUnit)
{
    const std::pair<qint64, QLatin1StringView> cases[]{{-5, "0 bytes"_L1},
                                                       {1, "1 byte"_L1},
                                                       {999, "999 bytes"_L1},
                                                       {1000, "1 KB"_L1},
                                                       {999'499, "999 KB"_L1},
                                                       {999'500, "1 MB"_L1},
                                                       {1'280'000'000, "1.28 GB"_L1},
                                                       {5'000'000'000'000'000, "5000 TB"_L1}};
    QLocale::setDefault(QLocale::c());
    for (const auto &[bytes, text] : cases)
        EXPECT_EQ(byteText(bytes), text) << bytes;
}

} // namespace cratewell
