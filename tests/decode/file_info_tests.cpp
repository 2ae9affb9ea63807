#include "decode/file_info.h"
#include "decoding.h"

#include <QtEndian>

namespace cratewell::test {

decode::Decoded<MediaInfo> infoOf(const QString &file)
{
    return decodeFile(file, [](int descriptor) { return decode::fileInfo(descriptor); });
}

TEST(FileInfo, SaysWhatAFilmIs)
{
    MadeMedia media;
    const QString input =
        u"-f lavfi -i testsrc2=s=320x180:r=30000/1001:d=1.001 -f lavfi -i sine=r=48000:d=1.001 -ac 2 "_s;
    for (const auto &[name, encoder, codec] :
         {std::tuple(u"a.mp4"_s, u"-c:v libx264 -pix_fmt yuv420p -c:a aac"_s, "avc1"),
          {u"a.mov"_s, u"-c:v prores_ks -profile:v 4444 -pix_fmt yuva444p10le -c:a pcm_s16le"_s, "ap4h"},
          {u"a.mkv"_s, u"-c:v libx264 -pix_fmt yuv420p -c:a flac"_s, "avc1"},
          {u"a.webm"_s, u"-c:v libvpx-vp9 -c:a libopus"_s, "vp09"}}) {
        SCOPED_TRACE(name.toStdString());
        const auto info = infoOf(media.ffmpeg(name, {}, input + encoder));
        ASSERT_TRUE(info) << info.error();
        EXPECT_NEAR(info->duration, 1.001, 0.03);
        EXPECT_EQ(QSize(info->width, info->height), QSize(320, 180));
        EXPECT_NEAR(info->frameRate, 29.97, 0.01);
        EXPECT_EQ(qToBigEndian(info->codec), qFromUnaligned<quint32>(codec));
        EXPECT_EQ(info->sampleRate, 48000);
        EXPECT_EQ(info->channels, 2);
    }
}

TEST(FileInfo, SaysWhatASoundOrAStillIs)
{
    MadeMedia media;
    for (const QString &name : {u"a.wav"_s, u"a.flac"_s, u"a.m4a"_s, u"a.mp3"_s}) {
        SCOPED_TRACE(name.toStdString());
        const auto info = infoOf(media.ffmpeg(name, {}, u"-f lavfi -i sine=r=22050:d=1.5 -ac 1"_s));
        ASSERT_TRUE(info) << info.error();
        EXPECT_NEAR(double(info->frames), 33075, name == u"a.mp3"_s ? 1300 : 0);
        EXPECT_NEAR(info->duration * 22050, double(info->frames), 1);
        EXPECT_EQ(info->sampleRate, 22050);
        EXPECT_TRUE(info->channels == 1 && !info->hasVideo());
    }
    const QString source = media.image(u"a.png"_s, fourColors({300, 200}));
    for (const QString &file :
         {media.ffmpeg(u"moving.gif"_s, source, u"-loop 1 -t 1 -i IN"_s), media.heif(u"a.heic"_s, source)})
        EXPECT_EQ(infoOf(file), (MediaInfo{.width = 300, .height = 200})) << file.toStdString();
    for (const QByteArray &content : {QByteArray(), QByteArray("only text"), QByteArray(5000, '\0')})
        EXPECT_FALSE(infoOf(media.bytes(u"bad.mov"_s, content)));
}

} // namespace cratewell::test
