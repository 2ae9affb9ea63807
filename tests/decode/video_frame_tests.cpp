#include "decoding.h"

namespace cratewell::test {

using namespace Qt::StringLiterals;

struct ColorCase
{
    QString file;
    QString encoder;
    QSize size = {320, 180};
    std::string quarters = "RG BY";
    int turned = 0; // counter-clockwise degrees in the display matrix
};

// 4:4:4 wherever the matrix is what is tested, so that chroma of half the size cannot blur it.
TEST(VideoColors, AreReadBackUprightInSquarePixels)
{
    MadeMedia media;
    const QString source = media.image(u"source.png"_s, fourColors({320, 180}));
    const ColorCase cases[]{
        {u"untagged.mp4"_s, u"-vf scale=out_color_matrix=bt601,format=yuv444p"_s},
        {u"709.mp4"_s, u"-vf scale=out_color_matrix=bt709,format=yuv444p -colorspace bt709"_s},
        {u"full.mp4"_s, u"-vf scale=out_color_matrix=bt709:out_range=full,format=yuv444p -colorspace bt709 "
                        "-color_range pc"_s},
        {u"2020.mov"_s, u"-vf scale=out_color_matrix=bt2020,format=yuv444p10le -colorspace bt2020nc"_s},
        {u"hd.mp4"_s, u"-vf scale=1280:720:out_color_matrix=bt709,format=yuv444p"_s, {640, 360}},
        {u"jpeg.mov"_s, u"-c:v mjpeg -pix_fmt yuvj444p -q:v 2"_s},
        {u"animation.mov"_s, u"-c:v qtrle -pix_fmt rgb24"_s},
        {u"opaque.mov"_s, u"-c:v prores_ks -profile:v 4444 -pix_fmt yuva444p10le"_s},
        {u"left.mp4"_s, u"-pix_fmt yuv444p"_s, {180, 320}, "GY RB", 90},
        {u"down.mp4"_s, u"-pix_fmt yuv444p"_s, {320, 180}, "YB GR", 180},
        {u"right.mov"_s, u"-pix_fmt yuv444p"_s, {180, 320}, "BR YG", 270},
        {u"wide.mp4"_s, u"-vf setsar=2 -pix_fmt yuv444p"_s, {640, 180}},
        {u"narrow.mp4"_s, u"-vf setsar=1/2 -pix_fmt yuv444p"_s, {160, 180}},
        {u"half.mp4"_s, u"-pix_fmt yuv420p"_s}};
    for (const auto &[name, encoder, size, colors, turned] : cases) {
        SCOPED_TRACE(name.toStdString());
        const QString quality = encoder.contains(u"-c:v"_s) ? QString() : u" -c:v libx264 -qp 4"_s;
        QString file = media.ffmpeg(name, source, u"-loop 1 -r 25 -t 0.4 -i IN "_s + encoder + quality);
        if (turned != 0)
            file =
                media.ffmpeg(u"turned.mov"_s, file, u"-i IN -c copy -metadata:s:v:0 rotate=%1"_s.arg(turned));
        const auto picture = video(file);
        ASSERT_TRUE(picture) << picture.error();
        EXPECT_EQ(QSize(picture->width, picture->height), size);
        EXPECT_EQ(quarters(*picture, 6), colors);
        EXPECT_FALSE(picture->hasAlpha);
        EXPECT_NEAR(picture->info.duration, 0.4, 0.01);
    }
}

struct AlphaCase
{
    QString file;
    QString encoder;
    int tolerance;
    int bleeding = 1; // of the hidden green, through chroma of half the size
};

TEST(VideoAlpha, IsKeptPremultipliedAndHiddenColorsStayHidden)
{
    MadeMedia media;
    const QString source = media.image(u"source.png"_s, halfClear({256, 128}, qRgba(255, 0, 0, 128)));
    for (const auto &[name, encoder, tolerance, bleeding] :
         {AlphaCase{u"prores.mov"_s, u"prores_ks -profile:v 4444 -pix_fmt yuva444p10le"_s, 2},
          {u"animation.mov"_s, u"qtrle -pix_fmt argb"_s, 1},
          {u"png.mov"_s, u"png -pix_fmt rgba"_s, 1},
          {u"9.webm"_s, u"libvpx-vp9 -pix_fmt yuva420p -lossless 1 -auto-alt-ref 0"_s, 2, 24},
          {u"8.webm"_s, u"libvpx -pix_fmt yuva420p -crf 4 -b:v 4M -auto-alt-ref 0"_s, 3, 24}}) {
        SCOPED_TRACE(name.toStdString());
        const QString file = media.ffmpeg(name, source, u"-loop 1 -r 25 -t 0.2 -i IN -c:v "_s + encoder);
        for (const int maxSide : {640, 64}) {
            const auto picture = video(file, 0.5, maxSide);
            ASSERT_TRUE(picture) << picture.error();
            ASSERT_EQ(picture->width, std::min(256, maxSide));
            EXPECT_TRUE(picture->hasAlpha);
            const QRgb left = pixel(*picture, 0.25);
            EXPECT_NEAR(qAlpha(left), 128, tolerance);
            EXPECT_NEAR(qRed(left), 128, tolerance + 2);
            EXPECT_EQ(qAlpha(pixel(*picture, 0.75)), 0);
            for (int x = 0; x < picture->width; ++x) {
                const QRgb at = pixel(*picture, (x + 0.5) / picture->width);
                EXPECT_LE(std::max({qRed(at), qGreen(at), qBlue(at)}), qAlpha(at)) << x;
                EXPECT_LE(qGreen(at), bleeding) << x;
            }
        }
    }
}

// Light over the reference white of 203 cd/m2, rolled off towards it: gray stays gray, and what is darker
// than half of it is shown as it is.
TEST(VideoBrightness, IsShownInLightThatAScreenCanShow)
{
    MadeMedia media;
    // Code from 0 to 1, gray in 8 bit sRGB.
    for (const auto &[transfer, code, gray] : {std::tuple(u"smpte2084"_s, 0.0, 0),
                                               {u"smpte2084"_s, 0.4401, 136}, // 50 cd/m2
                                               {u"smpte2084"_s, 0.5807, 229}, // reference white
                                               {u"smpte2084"_s, 0.7518, 255}, // 1000 cd/m2
                                               {u"smpte2084"_s, 1.0, 255},
                                               {u"arib-std-b67"_s, 0.0, 0},
                                               {u"arib-std-b67"_s, 0.5, 137},
                                               {u"arib-std-b67"_s, 0.75, 229},
                                               {u"arib-std-b67"_s, 1.0, 255}}) {
        const QString picture =
            u"-f lavfi -i color=black:s=64x64:r=25:d=0.2,format=yuv420p10le,geq=lum=%1:cb=512:cr=512 -c:v "
            "libx264 -qp 1 -color_primaries bt2020 -colorspace bt2020nc -color_trc %2"_s;
        const auto frame =
            video(media.ffmpeg(u"bright.mp4"_s, {}, picture.arg(qRound(64 + 876 * code)).arg(transfer)));
        ASSERT_TRUE(frame) << frame.error();
        const int green = qGreen(pixel(*frame));
        EXPECT_NEAR(green, gray, 3) << transfer.toStdString() << ' ' << code;
        EXPECT_TRUE(isNear(pixel(*frame), qRgb(green, green, green), 1)) << transfer.toStdString();
    }
}

// sRGB's green as wider primaries name it.
TEST(VideoPrimaries, AreBroughtToThoseOfTheScreen)
{
    MadeMedia media;
    for (const auto &[primaries, color] :
         {std::pair{u"smpte432"_s, QColor(117, 251, 76)}, {u"bt709"_s, QColor(0, 255, 0)}}) {
        const auto frame = video(media.ffmpeg(
            u"wide.mov"_s, media.image(u"source.png"_s, filled({64, 64}, color)),
            u"-loop 1 -t 0.2 -i IN -vf scale=out_color_matrix=bt709,format=yuv444p10le -colorspace bt709 "
            "-color_trc bt709 -c:v libx264 -qp 1 -color_primaries "_s +
                primaries));
        ASSERT_TRUE(frame) << frame.error();
        EXPECT_TRUE(isNear(pixel(*frame), qRgb(0, 255, 0), 12)) << primaries.toStdString();
        EXPECT_NEAR(qGreen(pixel(*frame)), 255, 3) << primaries.toStdString();
    }
}

TEST(VideoTime, IsWithinATenthOfASecondAndNeverAfterNinetyEightHundredths)
{
    MadeMedia media;
    for (const QString &file : {media.grayRamp(u"a.mp4"_s), media.grayRamp(u"b.mov"_s, u" -g 25"_s),
                                media.grayRamp(u"late.ts"_s, u" -output_ts_offset 7"_s)}) {
        for (const double fraction : {-1.0, 0.0, 0.004, 0.35, 0.5, 0.98, 1.0}) {
            const double second = 10 * std::clamp(fraction, 0.0, 0.98);
            const auto picture = video(file, fraction);
            ASSERT_TRUE(picture) << picture.error();
            EXPECT_NEAR(picture->info.duration, 10, 0.05);
            // One level a frame: 2.5 frames are the tolerance in time, the rest is for the encoder.
            EXPECT_NEAR(qRed(pixel(*picture)), second * 25, 2.5 + 2.5)
                << file.toStdString() << " at " << fraction;
        }
    }
}

TEST(VideoTime, ShowsTheFrameOnScreenWhereFramesAreFarApart)
{
    MadeMedia media;
    const QString file = media.ffmpeg(u"slow.mp4"_s, {},
                                      u"-f lavfi -i color=black:s=64x64:r=1/4:d=16,format=yuv420p,"
                                      "geq=lum=16+N*50:cb=128:cr=128 -c:v libx264 -qp 4"_s);
    for (const auto &[fraction, gray] : {std::pair{0.1, 0}, {0.45, 58}, {0.7, 116}, {0.98, 175}}) {
        const auto picture = video(file, fraction);
        ASSERT_TRUE(picture) << picture.error();
        EXPECT_NEAR(qRed(pixel(*picture)), gray, 3) << fraction;
    }
}

TEST(VideoFailure, IsASentenceNotAnEndOfTheProgram)
{
    MadeMedia media;
    const QByteArray film = MadeMedia::content(media.grayRamp(u"film.mp4"_s));
    for (const QString &file :
         {media.bytes(u"text.mov"_s, "This is only text.\n"), media.bytes(u"empty.mov"_s, {}),
          media.bytes(u"headless.mp4"_s, film.left(film.size() / 2)),
          media.ffmpeg(u"sound.mp4"_s, {}, u"-f lavfi -i sine=d=0.2 -c:a aac"_s)}) {
        const auto picture = video(file);
        ASSERT_FALSE(picture) << file.toStdString();
        EXPECT_FALSE(picture.error().empty());
    }
    EXPECT_FALSE(decode::videoFrame(-1, 0.5, 640));

    // The index is there and the end is missing: the last frame that can be read stands in.
    const QByteArray early = MadeMedia::content(media.grayRamp(u"early.mp4"_s, u" -movflags faststart"_s));
    const auto rest = video(media.bytes(u"half.mp4"_s, early.left(early.size() * 6 / 10)), 0.98);
    EXPECT_TRUE(rest) << rest.error();
}

} // namespace cratewell::test
