#include "decode/internal/orientation.h"
#include "decoding.h"

namespace cratewell::test {

TEST(Pictures, KeepTheirShapeAndTurn)
{
    EXPECT_EQ(decode::fittedInside(10000, 3, 640), (decode::Size{640, 1}));
    const int32_t mirrored[9]{-65000, 5000, 0, 5000, 65000, 0, 0, 0, 1 << 30};
    EXPECT_EQ(decode::Orientation::ofDisplayMatrix(mirrored), (decode::Orientation{false, true, false}));
}

struct ColorCase
{
    QString file;
    QString encoder;
    QSize size = {320, 180};
    std::string quarters = "RG BY";
    int turned = 0; // counter-clockwise degrees in the display matrix
};

// 4:4:4 wherever the matrix is what is tested, so that chroma of half the size cannot blur it.
TEST(VideoFrame, HasItsColorsUprightInSquarePixels)
{
    MadeMedia media;
    const QString source = media.image(u"source.png"_s, fourColors({320, 180}));
    const ColorCase cases[]{
        {u"untagged.mp4"_s, u"-vf scale=out_color_matrix=bt601,format=yuv444p"_s},
        {u"709.mp4"_s, u"-vf scale=out_color_matrix=bt709,format=yuv444p -colorspace bt709"_s},
        {u"2020.mov"_s, u"-vf scale=out_color_matrix=bt2020,format=yuv444p10le -colorspace bt2020nc"_s},
        {u"hd.mp4"_s, u"-vf scale=1280:720:out_color_matrix=bt709,format=yuv444p"_s, {640, 360}},
        {u"opaque.mov"_s, u"-c:v prores_ks -profile:v 4444 -pix_fmt yuva444p10le"_s},
        {u"left.mp4"_s, u"-pix_fmt yuv444p"_s, {180, 320}, "GY RB", 90},
        {u"down.mp4"_s, u"-pix_fmt yuv444p"_s, {320, 180}, "YB GR", 180},
        {u"wide.mp4"_s, u"-vf setsar=2 -pix_fmt yuv444p"_s, {640, 180}},
        {u"half.mp4"_s, u"-pix_fmt yuv420p"_s}};
    for (const auto &[name, encoder, size, colors, turned] : cases) {
        SCOPED_TRACE(name.toStdString());
        const QString file =
            media.ffmpeg(name, source, u"-loop 1 -r 25 -t 0.4 -i IN -c:v libx264 -qp 4 "_s + encoder);
        const decode::Picture picture = decoded(video(
            media.ffmpeg(u"turned.mov"_s, file, u"-i IN -c copy -metadata:s:v:0 rotate=%1"_s.arg(turned))));
        EXPECT_EQ(QSize(picture.width, picture.height), size);
        EXPECT_EQ(quarters(picture, 6), colors);
        EXPECT_FALSE(picture.hasAlpha);
        EXPECT_NEAR(picture.info.duration, 0.4, 0.01);
    }
    // Of full range, which saturated colors would not tell.
    const QString dark = media.image(u"dark.png"_s, filled({64, 64}, QColor(40, 40, 40)));
    for (const QString &encoder : {u"scale=out_range=full,format=yuv444p10le -color_range pc -qp 4"_s,
                                   u"format=yuvj444p -c:v mjpeg -q:v 1"_s}) {
        const QString file = media.ffmpeg(u"full.mov"_s, dark, u"-loop 1 -t 0.2 -i IN -vf "_s + encoder);
        EXPECT_TRUE(isNear(pixel(decoded(video(file))), qRgb(40, 40, 40), 3)) << encoder.toStdString();
    }
}

TEST(VideoFrame, KeepsAlphaPremultipliedAndHiddenColorsHidden)
{
    MadeMedia media;
    const QString source = media.image(u"source.png"_s, halfClear({256, 128}, qRgba(255, 0, 0, 128)));
    // Hidden green bleeds through chroma of half the size.
    for (const auto &[name, encoder, bleeding] :
         {std::tuple(u"prores.mov"_s, u"prores_ks -profile:v 4444 -pix_fmt yuva444p10le"_s, 1),
          {u"animation.mov"_s, u"qtrle -pix_fmt argb"_s, 1},
          {u"9.webm"_s, u"libvpx-vp9 -pix_fmt yuva420p -lossless 1 -auto-alt-ref 0"_s, 24},
          {u"8.webm"_s, u"libvpx -pix_fmt yuva420p -crf 4 -b:v 4M -auto-alt-ref 0"_s, 24}}) {
        const QString file = media.ffmpeg(name, source, u"-loop 1 -r 25 -t 0.2 -i IN -c:v "_s + encoder);
        for (const int maxSide : {640, 64}) {
            SCOPED_TRACE(name.toStdString());
            const decode::Picture picture = decoded(video(file, 0.5, maxSide));
            ASSERT_EQ(picture.width, std::min(256, maxSide));
            EXPECT_NEAR(qAlpha(pixel(picture, 0.25)), 128, 3);
            EXPECT_NEAR(qRed(pixel(picture, 0.25)), 128, 5);
            EXPECT_EQ(qAlpha(pixel(picture, 0.75)), 0);
            for (int x = 0; x < picture.width; ++x) {
                const QRgb at = pixel(picture, (x + 0.5) / picture.width);
                EXPECT_LE(std::max({qRed(at), qGreen(at), qBlue(at)}), qAlpha(at)) << x;
                EXPECT_LE(qGreen(at), bleeding) << x;
            }
        }
    }
}

// Light over the reference white of 203 cd/m2, rolled off towards it: gray stays gray, and what is darker
// than half of it is shown as it is.
TEST(VideoFrame, ShowsBrightFilmsInLightThatAScreenCanShow)
{
    MadeMedia media;
    // Code from 0 to 1, gray in 8 bit sRGB.
    for (const auto &[transfer, code, gray] : {std::tuple(u"smpte2084"_s, 0.4401, 136), // 50 cd/m2
                                               {u"smpte2084"_s, 0.5807, 229},           // reference white
                                               {u"smpte2084"_s, 0.7518, 255},           // 1000 cd/m2
                                               {u"arib-std-b67"_s, 0.5, 137},
                                               {u"arib-std-b67"_s, 0.75, 229}}) {
        const QString film =
            u"-f lavfi -i color=black:s=64x64:r=25:d=0.2,format=yuv420p10le,geq=lum=%1:cb=512:cr=512 -c:v "
            "libx264 -qp 1 -color_primaries bt2020 -colorspace bt2020nc -color_trc %2"_s;
        const QRgb color = pixel(
            decoded(video(media.ffmpeg(u"a.mp4"_s, {}, film.arg(qRound(64 + 876 * code)).arg(transfer)))));
        EXPECT_NEAR(qGreen(color), gray, 3) << transfer.toStdString() << ' ' << code;
        EXPECT_TRUE(isNear(color, qRgb(qGreen(color), qGreen(color), qGreen(color)), 1));
    }
}

TEST(VideoFrame, BringsWiderPrimariesToThoseOfTheScreen)
{
    MadeMedia media;
    const QString green = media.image(u"a.png"_s, filled({64, 64}, QColor(117, 251, 76))); // sRGB's, in P3
    const QString file =
        media.ffmpeg(u"wide.mov"_s, green,
                     u"-loop 1 -t 0.2 -i IN -vf scale=out_color_matrix=bt709,format=yuv444p10le -colorspace "
                     "bt709 -color_trc bt709 -c:v libx264 -qp 1 -color_primaries smpte432"_s);
    EXPECT_TRUE(isNear(pixel(decoded(video(file))), qRgb(0, 255, 0), 12));
}

TEST(VideoFrame, IsWithinATenthOfASecondAndNeverAfterNinetyEightHundredths)
{
    MadeMedia media;
    for (const QString &file : {media.grayRamp(u"a.mp4"_s), media.grayRamp(u"b.mov"_s, u" -g 25"_s),
                                media.grayRamp(u"late.ts"_s, u" -output_ts_offset 7"_s)}) {
        for (const double fraction : {-1.0, 0.0, 0.004, 0.35, 0.5, 0.98}) {
            const decode::Picture picture = decoded(video(file, fraction));
            EXPECT_NEAR(picture.info.duration, 10, 0.05);
            // One level a frame: 2.5 frames are the tolerance in time, the rest is for the encoder.
            EXPECT_NEAR(qRed(pixel(picture)), 250 * std::clamp(fraction, 0.0, 0.98), 2.5 + 2.5)
                << file.toStdString() << " at " << fraction;
        }
        EXPECT_EQ(pixel(decoded(video(file, 1.0))), pixel(decoded(video(file, 0.98))));
    }
    const QString slow = media.ffmpeg(u"slow.mp4"_s, {},
                                      u"-f lavfi -i color=black:s=64x64:r=1/4:d=16,format=yuv420p,"
                                      "geq=lum=16+N*50:cb=128:cr=128 -c:v libx264 -qp 4"_s);
    for (const auto &[fraction, gray] : {std::pair{0.1, 0}, {0.45, 58}, {0.7, 116}, {0.98, 175}})
        EXPECT_NEAR(qRed(pixel(decoded(video(slow, fraction)))), gray, 3)
            << "the frame on screen at " << fraction;
}

TEST(VideoFrame, FailsWithoutAPictureInWhatIsThere)
{
    MadeMedia media;
    const QByteArray film = MadeMedia::content(media.grayRamp(u"film.mp4"_s));
    for (const QString &bad :
         {media.bytes(u"text.mov"_s, "This is only text.\n"), media.bytes(u"empty.mov"_s, {}),
          media.bytes(u"headless.mp4"_s, film.left(film.size() / 2)),
          media.ffmpeg(u"sound.mp4"_s, {}, u"-f lavfi -i sine=d=0.2 -c:a aac"_s)})
        EXPECT_FALSE(video(bad)) << bad.toStdString();
    // The index is there and the end is missing: the last frame that can be read stands in.
    const QByteArray early = MadeMedia::content(media.grayRamp(u"early.mp4"_s, u" -movflags faststart"_s));
    EXPECT_TRUE(video(media.bytes(u"half.mp4"_s, early.left(early.size() * 6 / 10)), 0.98));
}

} // namespace cratewell::test
