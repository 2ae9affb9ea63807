#include "decode/file_info.h"
#include "decoding.h"
#include "made_media.h"

#include <gtest/gtest.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;

decode::Decoded<MediaInfo> infoOf(const QString &file)
{
    return decodeFile(file, [](int descriptor) { return decode::fileInfo(descriptor); });
}

std::string codecOf(const MediaInfo &info)
{
    return {char(info.codec >> 24), char(info.codec >> 16), char(info.codec >> 8), char(info.codec)};
}

struct FilmCase
{
    const char *name;
    const char *encoder;
    const char *codec;
};

TEST(FileInfo, SaysWhatAFilmIs)
{
    MadeMedia media;
    const QString input =
        u"-f lavfi -i testsrc2=s=320x180:r=30000/1001:d=1.001 -f lavfi -i sine=r=48000:d=1.001"_s;
    for (const auto &[name, encoder, codec] :
         {FilmCase{"a.mp4", "-c:v libx264 -pix_fmt yuv420p -c:a aac -ac 2", "avc1"},
          {"a.mov", "-c:v prores_ks -profile:v 4444 -pix_fmt yuva444p10le -c:a pcm_s16le -ac 2", "ap4h"},
          {"hq.mov", "-c:v prores_ks -profile:v 3 -c:a pcm_s24le -ac 2", "apch"},
          {"hevc.mp4", "-c:v libx265 -x265-params log-level=none -tag:v hvc1 -pix_fmt yuv420p -c:a aac -ac 2",
           "hvc1"},
          {"rle.mov", "-c:v qtrle -c:a pcm_s16le -ac 2", "rle "},
          {"a.mkv", "-c:v libx264 -pix_fmt yuv420p -c:a flac -ac 2", "avc1"},
          {"a.webm", "-c:v libvpx-vp9 -c:a libopus -ac 2", "vp09"}}) {
        const auto info = infoOf(media.ffmpeg(QString::fromLatin1(name), {},
                                              (input + u' ' + QString::fromLatin1(encoder)).split(u' ')));
        ASSERT_TRUE(info) << name << info.error();
        EXPECT_TRUE(info->hasVideo() && info->hasAudio()) << name;
        EXPECT_NEAR(info->duration, 1.001, 0.03) << name;
        EXPECT_EQ(QSize(info->width, info->height), QSize(320, 180)) << name;
        EXPECT_NEAR(info->frameRate, 29.97, 0.01) << name;
        EXPECT_EQ(codecOf(*info), codec) << name;
        EXPECT_EQ(info->sampleRate, 48000) << name;
        EXPECT_EQ(info->channels, 2) << name;
    }
    const QString film = media.ffmpeg(u"flat.mp4"_s, {}, (input + u" -pix_fmt yuv420p"_s).split(u' '));
    const auto turned = infoOf(
        media.ffmpeg(u"turned.mov"_s, film, u"-i IN -c copy -an -metadata:s:v:0 rotate=90"_s.split(u' ')));
    ASSERT_TRUE(turned);
    EXPECT_EQ(QSize(turned->width, turned->height), QSize(320, 180));
    EXPECT_FALSE(turned->hasAudio());
}

TEST(FileInfo, SaysWhatASoundOrAStillIs)
{
    MadeMedia media;
    for (const auto &[name, frames] : {std::pair{u"a.wav"_s, 33075},
                                       {u"a.aiff"_s, 33075},
                                       {u"a.flac"_s, 33075},
                                       {u"a.m4a"_s, 33075},
                                       {u"a.mp3"_s, -1}}) {
        const auto info =
            infoOf(media.ffmpeg(name, {}, u"-f lavfi -i sine=r=22050:d=1.5 -ac 1"_s.split(u' ')));
        ASSERT_TRUE(info) << name.toStdString() << info.error();
        EXPECT_TRUE(info->hasAudio() && !info->hasVideo()) << name.toStdString();
        EXPECT_NEAR(info->duration, 1.5, 0.06) << name.toStdString();
        EXPECT_NEAR(info->duration * 22050, double(info->frames), 1) << name.toStdString();
        if (frames >= 0) {
            EXPECT_EQ(info->frames, frames) << name.toStdString();
        }
        EXPECT_EQ(info->sampleRate, 22050) << name.toStdString();
        EXPECT_EQ(info->channels, 1) << name.toStdString();
    }
    const QString source = media.image(u"a.png"_s, fourColors({300, 200}));
    const QString moving =
        media.ffmpeg(u"moving.gif"_s, source, {u"-loop"_s, u"1"_s, u"-t"_s, u"1"_s, u"-i"_s, u"IN"_s});
    for (const QString &file : {source, moving, media.heif(u"a.heic"_s, source)}) {
        const auto info = infoOf(file);
        ASSERT_TRUE(info) << file.toStdString();
        EXPECT_EQ(info->width, 300) << file.toStdString();
        EXPECT_EQ(info->height, 200) << file.toStdString();
        EXPECT_FALSE(info->hasVideo() || info->hasAudio()) << file.toStdString();
    }
    for (const QByteArray &content : {QByteArray(), QByteArray("only text"), QByteArray(5000, '\0')})
        EXPECT_FALSE(infoOf(media.bytes(u"bad.mov"_s, content)));
}

} // namespace cratewell::test
