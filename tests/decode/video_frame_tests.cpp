#include "decoding.h"
#include "made_media.h"

#include <gtest/gtest.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;

// "H264" stands for an encoder that is as good as lossless.
QStringList words(const char *text)
{
    return QString::fromLatin1(text)
        .replace(u"H264"_s, u"-c:v libx264 -qp 4"_s)
        .split(u' ', Qt::SkipEmptyParts);
}

struct ColorCase
{
    const char *name;
    const char *file;
    const char *encoder;
    QSize size = {320, 180};
    std::string quarters = "RG BY";
    int turned = 0; // counter-clockwise degrees in the display matrix
};

class VideoColors : public testing::TestWithParam<ColorCase>
{
};

// 4:4:4 wherever the matrix is what is tested, so that chroma of half the size cannot blur it.
const ColorCase colorCases[]{
    {"Untagged601", "a.mp4", "-vf scale=out_color_matrix=bt601,format=yuv444p H264"},
    {"Tagged709", "a.mp4", "-vf scale=out_color_matrix=bt709,format=yuv444p -colorspace bt709 H264"},
    {"Full709", "a.mp4",
     "-vf scale=out_color_matrix=bt709:out_range=full,format=yuv444p -colorspace bt709 -color_range pc H264"},
    {"Matrix2020", "a.mov", "-vf scale=out_color_matrix=bt2020,format=yuv444p10le -colorspace bt2020nc H264"},
    {"UntaggedHd709", "a.mp4", "-vf scale=1280:720:out_color_matrix=bt709,format=yuv444p H264", {640, 360}},
    {"ProRes", "a.mov", "-c:v prores_ks -profile:v 4 -pix_fmt yuv444p10le"},
    {"FullJpegInMov", "a.mov", "-c:v mjpeg -pix_fmt yuvj444p -q:v 2"},
    {"QuickTimePng", "a.mov", "-c:v png -pix_fmt rgb24"},
    {"QuickTimeAnimation", "a.mov", "-c:v qtrle -pix_fmt rgb24"},
    {"Opaque4444", "a.mov", "-c:v prores_ks -profile:v 4444 -pix_fmt yuva444p10le"},
    {"Hevc", "a.mp4", "-pix_fmt yuv444p -c:v libx265 -x265-params log-level=none:qp=6"},
    {"TurnedLeft", "a.mp4", "H264 -pix_fmt yuv444p", {180, 320}, "GY RB", 90},
    {"UpsideDown", "a.mp4", "H264 -pix_fmt yuv444p", {320, 180}, "YB GR", 180},
    {"TurnedRight", "a.mov", "H264 -pix_fmt yuv444p", {180, 320}, "BR YG", 270},
    {"WidePixels", "a.mp4", "-vf setsar=2 H264 -pix_fmt yuv444p", {640, 180}},
    {"NarrowPixels", "a.mp4", "-vf setsar=1/2 H264 -pix_fmt yuv444p", {160, 180}},
    {"SmallHalfChroma", "a.mp4", "H264 -pix_fmt yuv420p"},
};

TEST_P(VideoColors, AreReadBackUprightInSquarePixels)
{
    MadeMedia media;
    const QString source = media.image(u"source.png"_s, fourColors({320, 180}));
    const QString file = media.ffmpeg(QString::fromLatin1(GetParam().file), source,
                                      words("-loop 1 -r 25 -t 0.4 -i IN") + words(GetParam().encoder));
    const QString turn = u"-i IN -c copy -metadata:s:v:0 rotate=%1"_s.arg(GetParam().turned);
    const auto picture =
        video(GetParam().turned == 0 ? file : media.ffmpeg(u"turned.mov"_s, file, turn.split(u' ')));
    ASSERT_TRUE(picture) << picture.error();
    EXPECT_EQ(QSize(picture->width, picture->height), GetParam().size);
    EXPECT_EQ(quarters(*picture, 6), GetParam().quarters);
    EXPECT_FALSE(picture->hasAlpha);
    EXPECT_NEAR(picture->info.duration, 0.4, 0.01);
}

INSTANTIATE_TEST_SUITE_P(Video, VideoColors, testing::ValuesIn(colorCases),
                         [](const auto &test) { return std::string(test.param.name); });

struct AlphaCase
{
    const char *name;
    const char *file;
    const char *encoder;
    int tolerance;
    int bleeding = 1; // of the hidden green, through chroma of half the size
};

class VideoAlpha : public testing::TestWithParam<AlphaCase>
{
};

// Half-transparent red on the left; on the right nothing, with green hidden under it.
TEST_P(VideoAlpha, IsKeptPremultipliedAndHiddenColorsStayHidden)
{
    MadeMedia media;
    QImage image(256, 128, QImage::Format_ARGB32);
    image.fill(qRgba(0, 255, 0, 0));
    for (int y = 0; y < image.height(); ++y)
        std::fill_n(reinterpret_cast<QRgb *>(image.scanLine(y)), 128, qRgba(255, 0, 0, 128));
    const QString source = media.image(u"source.png"_s, image);
    const QString file = media.ffmpeg(QString::fromLatin1(GetParam().file), source,
                                      words("-loop 1 -r 25 -t 0.2 -i IN") + words(GetParam().encoder));

    for (const int maxSide : {640, 64}) {
        const auto picture = video(file, 0.5, maxSide);
        ASSERT_TRUE(picture) << picture.error();
        ASSERT_EQ(picture->width, std::min(256, maxSide));
        const int width = picture->width, middle = picture->height / 2;
        const QRgb left = pixel(*picture, {width / 4, middle}),
                   right = pixel(*picture, {width * 3 / 4, middle});
        EXPECT_NEAR(qAlpha(left), 128, GetParam().tolerance);
        EXPECT_NEAR(qRed(left), 128, GetParam().tolerance + 2);
        EXPECT_EQ(qAlpha(right), 0);
        EXPECT_TRUE(picture->hasAlpha);
        for (int x = 0; x < width; ++x) {
            const QRgb at = pixel(*picture, {x, middle});
            EXPECT_LE(std::max({qRed(at), qGreen(at), qBlue(at)}), qAlpha(at)) << x;
            EXPECT_LE(qGreen(at), GetParam().bleeding) << x;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Video, VideoAlpha,
    testing::Values(
        AlphaCase{"ProRes4444", "a.mov", "-c:v prores_ks -profile:v 4444 -pix_fmt yuva444p10le", 2},
        AlphaCase{"QuickTimeAnimation", "a.mov", "-c:v qtrle -pix_fmt argb", 1},
        AlphaCase{"QuickTimePng", "a.mov", "-c:v png -pix_fmt rgba", 1},
        AlphaCase{"Vp9", "a.webm", "-c:v libvpx-vp9 -pix_fmt yuva420p -lossless 1 -auto-alt-ref 0", 2, 24},
        AlphaCase{"Vp8", "a.webm", "-c:v libvpx -pix_fmt yuva420p -crf 4 -b:v 4M -auto-alt-ref 0", 3, 24}),
    [](const auto &test) { return std::string(test.param.name); });

struct BrightCase
{
    const char *transfer;
    double code; // 0 to 1
    int gray;    // 8 bit, sRGB
};

// Light over the reference white of 203 cd/m2, rolled off towards it: gray stays gray, and what is darker
// than half of it is shown as it is.
TEST(VideoBrightness, IsShownInLightThatAScreenCanShow)
{
    MadeMedia media;
    const BrightCase cases[]{{"smpte2084", 0, 0},        {"smpte2084", 0.4401, 136}, // 50 cd/m2
                             {"smpte2084", 0.5807, 229},                             // reference white
                             {"smpte2084", 0.7518, 255},                             // 1000 cd/m2
                             {"smpte2084", 1, 255},      {"arib-std-b67", 0, 0},
                             {"arib-std-b67", 0.5, 137}, {"arib-std-b67", 0.75, 229},
                             {"arib-std-b67", 1, 255}};
    for (const auto &[transfer, code, gray] : cases) {
        const QString level = QString::number(qRound(64 + 876 * code));
        const QString picture =
            u"-f lavfi -i color=black:s=64x64:r=25:d=0.2,format=yuv420p10le,geq=lum=%1:cb=512:cr=512"_s.arg(
                level);
        const QString encoder =
            u"-c:v libx264 -qp 1 -color_primaries bt2020 -colorspace bt2020nc -color_trc "_s +
            QString::fromLatin1(transfer);
        const auto frame =
            video(media.ffmpeg(u"bright.mp4"_s, {}, picture.split(u' ') + encoder.split(u' ')));
        ASSERT_TRUE(frame) << frame.error();
        const QRgb found = pixel(*frame, {32, 32});
        EXPECT_NEAR(qGreen(found), gray, 3) << transfer << ' ' << code;
        EXPECT_NEAR(qRed(found), qGreen(found), 1) << transfer << ' ' << code;
        EXPECT_NEAR(qBlue(found), qGreen(found), 1) << transfer << ' ' << code;
    }
}

// sRGB's green as wider primaries name it.
TEST(VideoPrimaries, AreBroughtToThoseOfTheScreen)
{
    MadeMedia media;
    for (const auto &[primaries, color] :
         {std::pair{"smpte432", qRgb(117, 251, 76)}, {"bt709", qRgb(0, 255, 0)}}) {
        QImage image(64, 64, QImage::Format_RGB32);
        image.fill(color);
        const QString file = media.ffmpeg(
            u"wide.mov"_s, media.image(u"source.png"_s, image),
            words(
                "-loop 1 -t 0.2 -i IN -vf scale=out_color_matrix=bt709,format=yuv444p10le -colorspace bt709 "
                "-color_trc bt709 -c:v libx264 -qp 1 -color_primaries") +
                QStringList{QString::fromLatin1(primaries)});
        const auto frame = video(file);
        ASSERT_TRUE(frame) << frame.error();
        const QRgb found = pixel(*frame, {32, 32});
        EXPECT_NEAR(qRed(found), 0, 12) << primaries;
        EXPECT_NEAR(qGreen(found), 255, 3) << primaries;
        EXPECT_NEAR(qBlue(found), 0, 12) << primaries;
    }
}

TEST(VideoTime, IsWithinATenthOfASecondAndNeverAfterNinetyEightHundredths)
{
    MadeMedia media;
    const QString usual = media.grayRamp(u"a.mp4"_s);
    const QString shortGroups = media.grayRamp(u"b.mov"_s, {u"-g"_s, u"25"_s});
    const QString lateStart = media.grayRamp(u"c.ts"_s, {u"-output_ts_offset"_s, u"7"_s});
    for (const QString &file : {usual, shortGroups, lateStart}) {
        for (const double fraction : {-1.0, 0.0, 0.004, 0.35, 0.5, 0.98, 1.0}) {
            const double second = 10 * std::clamp(fraction, 0.0, 0.98);
            const auto picture = video(file, fraction);
            ASSERT_TRUE(picture) << picture.error();
            EXPECT_NEAR(picture->info.duration, 10, 0.05);
            // One level a frame: 2.5 frames are the tolerance in time, the rest is for the encoder.
            EXPECT_NEAR(qRed(pixel(*picture, {32, 32})), second * 25, 2.5 + 2.5)
                << file.toStdString() << " at " << fraction;
        }
    }
}

TEST(VideoTime, ShowsTheFrameOnScreenWhereFramesAreFarApart)
{
    MadeMedia media;
    const QString file = media.ffmpeg(u"slow.mp4"_s, {},
                                      words("-f lavfi -i color=black:s=64x64:r=1/4:d=16,format=yuv420p,"
                                            "geq=lum=16+N*50:cb=128:cr=128 -c:v libx264 -qp 4"));
    for (const auto &[fraction, gray] : {std::pair{0.1, 0}, {0.45, 58}, {0.7, 116}, {0.98, 175}}) {
        const auto picture = video(file, fraction);
        ASSERT_TRUE(picture) << picture.error();
        EXPECT_NEAR(qRed(pixel(*picture, {32, 32})), gray, 3) << fraction;
    }
}

TEST(VideoFailure, IsASentenceNotAnEndOfTheProgram)
{
    MadeMedia media;
    const QByteArray film = MadeMedia::content(media.grayRamp(u"film.mp4"_s));
    const QByteArray early =
        MadeMedia::content(media.grayRamp(u"early.mp4"_s, {u"-movflags"_s, u"faststart"_s}));
    const QStringList sound = words("-f lavfi -i sine=d=0.2 -c:a aac");

    for (const QString &file :
         {media.bytes(u"text.mov"_s, "This is only text.\n"), media.bytes(u"empty.mov"_s, {}),
          media.bytes(u"headless.mp4"_s, film.left(film.size() / 2)),
          media.ffmpeg(u"sound.mp4"_s, {}, sound)}) {
        const auto picture = video(file);
        ASSERT_FALSE(picture) << file.toStdString();
        EXPECT_FALSE(picture.error().empty());
    }
    EXPECT_FALSE(decode::videoFrame(-1, 0.5, 640));

    // The index is there and the end is missing: the last frame that can be read stands in.
    const auto rest = video(media.bytes(u"half.mp4"_s, early.left(early.size() * 6 / 10)), 0.98);
    EXPECT_TRUE(rest) << rest.error();
}

} // namespace cratewell::test
