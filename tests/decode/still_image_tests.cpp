#include "decoding.h"
#include "made_media.h"

#include <gtest/gtest.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;

// A JPEG with an EXIF segment that holds nothing but the orientation.
QByteArray withOrientation(const QByteArray &jpeg, char orientation)
{
    const QByteArray exif = QByteArray("Exif\0\0MM\0\x2a\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0", 25) +
                            orientation + QByteArray(6, '\0');
    const int length = int(exif.size()) + 2;
    const QByteArray head = QByteArray("\xff\xe1", 2) + char(length >> 8) + char(length & 255);
    return jpeg.left(2) + head + exif + jpeg.mid(2);
}

TEST(StillImage, StandsUprightInEveryOrientation)
{
    MadeMedia media;
    const QString source = media.image(u"source.png"_s, fourColors({320, 160}));
    const QByteArray jpeg =
        MadeMedia::content(media.vips(u"a.jpg"_s, source, {u"copy"_s, u"IN"_s, u"OUT"_s}));
    const char *expected[]{"RG BY", "GR YB", "YB GR", "BY RG", "RB GY", "BR YG", "YG BR", "GY RB"};
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const auto picture =
            still(media.bytes(u"turned.jpg"_s, withOrientation(jpeg, char(orientation))), 100);
        ASSERT_TRUE(picture) << picture.error();
        EXPECT_EQ(quarters(*picture, 12), expected[orientation - 1]) << orientation;
        EXPECT_EQ(QSize(picture->width, picture->height), orientation <= 4 ? QSize(100, 50) : QSize(50, 100));
    }
}

TEST(StillImage, KeepsColorsInEveryFormat)
{
    MadeMedia media;
    const QString source = media.image(u"source.png"_s, fourColors({160, 80}));
    const auto copy = [&](const QString &name, const QString &options = {}) {
        return media.vips(name, source, {u"copy"_s, u"IN"_s, media.path(name) + options});
    };
    const QString gif = media.ffmpeg(
        u"moving.gif"_s, source,
        {u"-loop"_s, u"1"_s, u"-t"_s, u"1"_s, u"-i"_s, u"IN"_s, u"-vf"_s, u"negate=enable='gte(n,1)'"_s});
    for (const QString &file :
         {source, copy(u"a.jpg"_s, u"[Q=98,no-subsample]"_s), copy(u"a.tif"_s),
          copy(u"a.webp"_s, u"[lossless]"_s), copy(u"palette.png"_s, u"[palette]"_s), gif,
          media.heif(u"a.heic"_s, source),
          media.vips(u"deep.png"_s, source, {u"colourspace"_s, u"IN"_s, u"OUT"_s, u"rgb16"_s}),
          media.vips(u"deep.tif"_s, source, {u"colourspace"_s, u"IN"_s, u"OUT"_s, u"rgb16"_s}),
          media.vips(u"wide.jpg"_s, source,
                     {u"icc_transform"_s, u"IN"_s, media.path(u"wide.jpg"_s) + u"[Q=98,no-subsample]"_s,
                      u"p3"_s, u"--input-profile"_s, u"srgb"_s})}) {
        const auto picture = still(file);
        ASSERT_TRUE(picture) << file.toStdString() << ": " << picture.error();
        EXPECT_EQ(QSize(picture->width, picture->height), QSize(160, 80)) << file.toStdString();
        EXPECT_EQ(quarters(*picture, 8), "RG BY") << file.toStdString();
        EXPECT_EQ(picture->info.duration, 0);
    }
}

TEST(StillImage, ConvertsGreyAndPrintColors)
{
    MadeMedia media;
    QImage gray(64, 64, QImage::Format_Grayscale8);
    gray.fill(QColor(100, 100, 100));
    const QString source = media.image(u"gray.png"_s, gray);
    const QString rich = media.image(u"rgb.png"_s, gray.convertToFormat(QImage::Format_RGB32));
    for (const QString &file :
         {source, media.vips(u"deep.png"_s, source, {u"colourspace"_s, u"IN"_s, u"OUT"_s, u"grey16"_s}),
          media.vips(u"print.jpg"_s, rich,
                     {u"icc_export"_s, u"IN"_s, u"OUT"_s, u"--output-profile"_s, u"cmyk"_s}),
          media.vips(u"print.tif"_s, rich,
                     {u"icc_export"_s, u"IN"_s, u"OUT"_s, u"--output-profile"_s, u"cmyk"_s})}) {
        const auto picture = still(file);
        ASSERT_TRUE(picture) << file.toStdString() << ": " << picture.error();
        const QRgb found = pixel(*picture, {32, 32});
        EXPECT_NEAR(qRed(found), 100, 4) << file.toStdString();
        EXPECT_NEAR(qGreen(found), 100, 4) << file.toStdString();
        EXPECT_NEAR(qBlue(found), 100, 4) << file.toStdString();
        EXPECT_EQ(qAlpha(found), 255) << file.toStdString();
    }
}

TEST(StillImage, KeepsAlphaPremultiplied)
{
    MadeMedia media;
    QImage image(200, 100, QImage::Format_ARGB32);
    image.fill(qRgba(0, 255, 0, 0));
    for (int y = 0; y < image.height(); ++y)
        std::fill_n(reinterpret_cast<QRgb *>(image.scanLine(y)), 100, qRgba(200, 100, 50, 128));
    const QString source = media.image(u"source.png"_s, image);
    for (const QString &file :
         {source,
          media.vips(u"a.webp"_s, source, {u"copy"_s, u"IN"_s, media.path(u"a.webp"_s) + u"[lossless]"_s}),
          media.vips(u"a.tif"_s, source, {u"copy"_s, u"IN"_s, u"OUT"_s}),
          media.vips(u"deep.png"_s, source, {u"colourspace"_s, u"IN"_s, u"OUT"_s, u"rgb16"_s})}) {
        for (const int maxSide : {640, 50}) {
            const auto picture = still(file, maxSide);
            ASSERT_TRUE(picture) << file.toStdString() << ": " << picture.error();
            const QRgb left = pixel(*picture, {picture->width / 4, picture->height / 2});
            EXPECT_NEAR(qAlpha(left), 128, 1) << file.toStdString();
            EXPECT_NEAR(qRed(left), 100, 2) << file.toStdString();
            EXPECT_NEAR(qGreen(left), 50, 2) << file.toStdString();
            EXPECT_NEAR(qBlue(left), 25, 2) << file.toStdString();
            EXPECT_EQ(pixel(*picture, {picture->width * 3 / 4, picture->height / 2}), 0u)
                << file.toStdString();
        }
    }
}

TEST(StillImage, FailsWithASentence)
{
    MadeMedia media;
    const QString source = media.image(u"source.png"_s, fourColors({64, 64}));
    QByteArray huge = MadeMedia::content(source);
    huge.replace(16, 8, QByteArray("\0\x01\0\0\0\x01\0\0", 8)); // claims 65536 x 65536 pixels
    const QByteArray drawing = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"9\" height=\"9\"/>";
    for (const QString &file : {media.bytes(u"empty.png"_s, {}), media.bytes(u"text.jpg"_s, "only text"),
                                media.bytes(u"huge.png"_s, huge), media.bytes(u"drawing.png"_s, drawing),
                                media.bytes(u"cut.png"_s, MadeMedia::content(source).left(20))}) {
        const auto picture = still(file);
        ASSERT_FALSE(picture) << file.toStdString();
        EXPECT_FALSE(picture.error().empty()) << file.toStdString();
    }
    EXPECT_FALSE(decode::stillImage(-1, 640));
}

} // namespace cratewell::test
