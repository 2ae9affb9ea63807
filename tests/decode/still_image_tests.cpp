#include "decoding.h"

namespace cratewell::test {

TEST(StillImage, StandsUprightInEveryOrientation)
{
    MadeMedia media;
    const QString source = media.image(u"source.png"_s, fourColors({320, 160}));
    const QByteArray jpeg = MadeMedia::content(media.vips(u"a.jpg"_s, source, u"copy IN OUT"_s));
    const char *expected[]{"RG BY", "GR YB", "YB GR", "BY RG", "RB GY", "BR YG", "YG BR", "GY RB"};
    for (int orientation = 1; orientation <= 8; ++orientation) {
        // An EXIF segment that holds nothing else.
        QByteArray turned = jpeg;
        turned.insert(2, QByteArray("\xff\xe1\0\x22"
                                    "Exif\0\0MM\0\x2a\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0",
                                    29) +
                             char(orientation) + QByteArray(6, '\0'));
        const decode::Picture picture = decoded(still(media.bytes(u"turned.jpg"_s, turned), 100));
        EXPECT_EQ(quarters(picture, 12), expected[orientation - 1]) << orientation;
        EXPECT_EQ(QSize(picture.width, picture.height), orientation <= 4 ? QSize(100, 50) : QSize(50, 100));
    }
}

TEST(StillImage, KeepsColorsInEveryFormat)
{
    MadeMedia media;
    const QString source = media.image(u"source.png"_s, fourColors({160, 80}));
    const auto vips = [&](const QString &name, const QString &arguments) {
        return media.vips(name, source, arguments);
    };
    for (const QString &file :
         {source, vips(u"a.jpg"_s, u"copy IN OUT[Q=98,no-subsample]"_s), vips(u"a.tif"_s, u"copy IN OUT"_s),
          vips(u"a.webp"_s, u"copy IN OUT[lossless]"_s), vips(u"palette.png"_s, u"copy IN OUT[palette]"_s),
          media.ffmpeg(u"moving.gif"_s, source, u"-loop 1 -t 1 -i IN -vf negate=enable='gte(n,1)'"_s),
          media.heif(u"a.heic"_s, source), vips(u"deep.tif"_s, u"colourspace IN OUT rgb16"_s),
          vips(u"wide.jpg"_s, u"icc_transform IN OUT[Q=98,no-subsample] p3 --input-profile srgb"_s)}) {
        const decode::Picture picture = decoded(still(file));
        EXPECT_EQ(QSize(picture.width, picture.height), QSize(160, 80)) << file.toStdString();
        EXPECT_EQ(quarters(picture, 8), "RG BY") << file.toStdString();
        EXPECT_FALSE(picture.hasAlpha) << file.toStdString();
    }
    const QImage gray = filled({64, 64}, QColor(100, 100, 100));
    const QString rich = media.image(u"rgb.png"_s, gray);
    const QString plain = media.image(u"gray.png"_s, gray.convertToFormat(QImage::Format_Grayscale8));
    for (const QString &file :
         {plain, media.vips(u"deep.png"_s, plain, u"colourspace IN OUT grey16"_s),
          media.vips(u"print.jpg"_s, rich, u"icc_export IN OUT --output-profile cmyk"_s)})
        EXPECT_TRUE(isNear(pixel(decoded(still(file))), qRgb(100, 100, 100), 4)) << file.toStdString();
}

TEST(StillImage, KeepsAlphaPremultiplied)
{
    MadeMedia media;
    const QString source = media.image(u"source.png"_s, halfClear({200, 100}, qRgba(200, 100, 50, 128)));
    for (const QString &file : {source, media.vips(u"a.webp"_s, source, u"copy IN OUT[lossless]"_s),
                                media.vips(u"deep.png"_s, source, u"colourspace IN OUT rgb16"_s)}) {
        for (const int maxSide : {640, 50}) {
            const decode::Picture picture = decoded(still(file, maxSide));
            EXPECT_TRUE(isNear(pixel(picture, 0.25), qRgba(100, 50, 25, 128), 2)) << file.toStdString();
            EXPECT_EQ(pixel(picture, 0.75), 0U) << file.toStdString();
        }
    }
}

TEST(StillImage, FailsForWhatIsNoPicture)
{
    MadeMedia media;
    const QByteArray whole = MadeMedia::content(media.image(u"source.png"_s, fourColors({64, 64})));
    QByteArray huge = whole;
    huge.replace(16, 8, QByteArray("\0\x01\0\0\0\x01\0\0", 8)); // claims 65536 x 65536 pixels
    const QByteArray drawing = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"9\" height=\"9\"/>";
    for (const QByteArray &content : {QByteArray(), QByteArray("only text"), huge, drawing, whole.left(20)})
        EXPECT_FALSE(still(media.bytes(u"bad.png"_s, content))) << content.toStdString();
}

} // namespace cratewell::test
