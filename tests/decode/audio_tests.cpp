#include "decode/audio_peaks.h"
#include "decode/audio_reader.h"
#include "decoding.h"
#include "made_media.h"

#include <QtEndian>
#include <gtest/gtest.h>
#include <random>

namespace cratewell::test {

using namespace Qt::StringLiterals;

using Samples = std::vector<int16_t>; // interleaved

template<typename Number> QByteArray littleEndian(Number number)
{
    QByteArray bytes(sizeof number, '\0');
    qToLittleEndian(number, bytes.data());
    return bytes;
}

QByteArray wav(const Samples &samples, int channels, int rate)
{
    QByteArray data;
    for (const int16_t sample : samples)
        data += littleEndian(sample);
    const auto frameBytes = int16_t(channels * 2);
    const QByteArray format = littleEndian<int16_t>(1) + littleEndian(int16_t(channels)) +
                              littleEndian(rate) + littleEndian(rate * frameBytes) +
                              littleEndian(frameBytes) + littleEndian<int16_t>(16);
    return "RIFF" + littleEndian(int(data.size()) + 36) + "WAVEfmt " + littleEndian(16) + format + "data" +
           littleEndian(int(data.size())) + data;
}

Samples noise(size_t count, int loudest = 32767)
{
    std::minstd_rand chance(7);
    Samples samples(count);
    for (int16_t &sample : samples)
        sample = int16_t(int(chance() % unsigned(2 * loudest + 1)) - loudest);
    return samples;
}

// By the frames that count, named one by one.
std::vector<float> expectedPeaks(const Samples &samples, int channels, int count)
{
    const int frames = int(samples.size()) / channels, bucket = frames < count ? 1 : frames / count;
    const int step = frames / count < 96 ? 1 : bucket / 96;
    std::vector<double> peaks(size_t(count), 0.0);
    for (int frame = 0; frame < std::min(frames, bucket * count); ++frame) {
        if (frame % bucket % step != 0)
            continue;
        for (int channel = 0; channel < channels; ++channel)
            peaks[size_t(frame / bucket)] =
                std::max(peaks[size_t(frame / bucket)],
                         std::abs(double(samples[size_t(frame * channels + channel)])) / 32768);
    }
    const double largest = std::max(*std::max_element(peaks.begin(), peaks.end()), 0.0001);
    std::vector<float> result;
    result.reserve(peaks.size());
    for (const double peak : peaks)
        result.push_back(float(peak / largest));
    return result;
}

std::vector<float> peaksOf(const QString &file, int count = 240)
{
    const auto peaks =
        decodeFile(file, [&](int descriptor) { return decode::audioPeaks(descriptor, count); });
    EXPECT_TRUE(peaks) << file.toStdString() << ": " << peaks.error();
    return peaks.value_or(std::vector<float>());
}

void expectNear(const std::vector<float> &found, const std::vector<float> &expected, float tolerance,
                const std::string &what)
{
    ASSERT_EQ(found.size(), expected.size()) << what;
    for (size_t i = 0; i < found.size(); ++i)
        ASSERT_NEAR(found[i], expected[i], tolerance) << what << ", peak " << i;
}

TEST(Peaks, LookWhereTheArithmeticSays)
{
    MadeMedia media;
    for (const int channels : {1, 2, 3}) {
        for (const int frames :
             {1, 10, 239, 240, 241, 240 * 96 - 1, 240 * 96, 240 * 191, 240 * 192 + 5, 100'000}) {
            const Samples samples = noise(size_t(frames * channels), frames % 2 == 0 ? 32767 : 500);
            expectNear(peaksOf(media.bytes(u"a.wav"_s, wav(samples, channels, 8000))),
                       expectedPeaks(samples, channels, 240), 1e-6F,
                       std::to_string(frames) + " frames of " + std::to_string(channels));
        }
    }
    const QString silence = media.bytes(u"silence.wav"_s, wav(Samples(20'000), 1, 8000));
    EXPECT_EQ(peaksOf(silence), std::vector<float>(240, 0.0F));
    EXPECT_EQ(peaksOf(silence, 7), std::vector<float>(7, 0.0F));
    // Quieter than a ten-thousandth stays quiet.
    const QString faint = media.bytes(u"faint.wav"_s, wav(Samples(20'000, 1), 1, 8000));
    EXPECT_NEAR(peaksOf(faint).front(), 1 / 32768.0 / 0.0001, 1e-5);
}

TEST(Peaks, EndAfterFiveMinutes)
{
    MadeMedia media;
    Samples samples = noise(400 * 1000, 5000);
    const std::vector<float> expected =
        expectedPeaks(Samples(samples.begin(), samples.begin() + 300'000), 1, 240);
    std::fill(samples.begin() + 300'000, samples.end(), int16_t(32767));
    const QString file = media.bytes(u"long.wav"_s, wav(samples, 1, 1000));
    expectNear(peaksOf(file), expected, 1e-6F, "plain");
    expectNear(peaksOf(media.ffmpeg(u"long.flac"_s, file, {u"-i"_s, u"IN"_s})), expected, 1e-6F, "packed");
}

struct AudioFormat
{
    const char *name;
    const char *encoder = "";
    float tolerance = 1e-6F;
};

// The same samples in every wrapping; lossy ones of a sound that coding hardly changes.
TEST(Peaks, AreTheSameInEveryFormat)
{
    MadeMedia media;
    Samples samples(44100 * 3);
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] = int16_t(std::sin(double(i) * 0.05) * 20000 * (1 - double(i % 44100) / 44100));
    const QString source = media.bytes(u"source.wav"_s, wav(samples, 1, 44100));
    const std::vector<float> expected = expectedPeaks(samples, 1, 240);
    const AudioFormat formats[]{{"a.aiff"},
                                {"deep.aiff", "-c:a pcm_s24be"},
                                {"deep.wav", "-c:a pcm_s24le"},
                                {"wide.wav", "-c:a pcm_s32le"},
                                {"float.wav", "-c:a pcm_f32le"},
                                {"double.wav", "-c:a pcm_f64le"},
                                {"small.wav", "-c:a pcm_u8", 0.02F},
                                {"law.wav", "-c:a pcm_mulaw", 0.05F},
                                {"a.caf", "-c:a pcm_s16be"},
                                {"a.mov", "-c:a pcm_s16le"},
                                {"big.mov", "-c:a pcm_s24be"},
                                {"a.mkv", "-c:a pcm_s16le"},
                                {"a.flac"},
                                {"deep.flac", "-sample_fmt s32"},
                                {"lossless.m4a", "-c:a alac"},
                                {"a.mp3", "-b:a 256k", 0.04F},
                                {"bare.mp3", "-b:a 256k -write_xing 0", 1.0F},
                                {"a.m4a", "-b:a 256k", 0.04F},
                                {"a.aac", "-b:a 256k", 1.0F}};
    for (const AudioFormat &format : formats) {
        const QString file =
            media.ffmpeg(QString::fromLatin1(format.name), source,
                         QStringList{u"-i"_s, u"IN"_s} +
                             QString::fromLatin1(format.encoder).split(u' ', Qt::SkipEmptyParts));
        expectNear(peaksOf(file), expected, format.tolerance, format.name);
    }
}

TEST(Peaks, OfDamagedFilesAreOfWhatIsThereOrFail)
{
    MadeMedia media;
    const Samples samples = noise(50'000);
    const QByteArray whole = wav(samples, 1, 8000);
    const Samples half(samples.begin(), samples.begin() + 25'000);
    expectNear(peaksOf(media.bytes(u"cut.wav"_s, whole.left(44 + 50'000))), expectedPeaks(half, 1, 240),
               1e-6F, "cut");
    QByteArray streamed = whole; // lengths that nobody went back to fill in
    streamed.replace(4, 4, QByteArray(4, '\xff')).replace(40, 4, QByteArray(4, '\xff'));
    expectNear(peaksOf(media.bytes(u"streamed.wav"_s, streamed)), expectedPeaks(samples, 1, 240), 1e-6F,
               "streamed");

    const QByteArray flac =
        MadeMedia::content(media.ffmpeg(u"a.flac"_s, media.bytes(u"whole.wav"_s, whole), {u"-i"_s, u"IN"_s}));
    EXPECT_EQ(peaksOf(media.bytes(u"cut.flac"_s, flac.left(flac.size() / 2))).size(), 240U);

    QByteArray odd = whole;
    odd.replace(22, 2, QByteArray(2, '\xff')); // 65535 channels
    QByteArray still = whole;
    still.replace(24, 4, QByteArray(4, '\0')); // no rate
    for (const QByteArray &content :
         {QByteArray(), whole.left(44), whole.left(20), odd, still, QByteArray("text")}) {
        const auto peaks = decodeFile(media.bytes(u"bad.wav"_s, content),
                                      [](int descriptor) { return decode::audioPeaks(descriptor, 240); });
        EXPECT_TRUE(!peaks || peaks->size() == 240) << content.size();
    }
    EXPECT_FALSE(decode::audioPeaks(-1, 240));
}

// What is read after a jump is what reading on would have given.
TEST(AudioReader, ReadsOnFromAnyFrame)
{
    MadeMedia media;
    Samples rising(2 * 44100 * 4); // of a pitch that tells where it is; coders make up noise anew each time
    for (size_t i = 0; i < rising.size(); ++i) {
        const auto frame = double(i - i % 2) / 2;
        rising[i] = int16_t(8000 * std::sin(frame * frame * 5e-7));
    }
    const QString source = media.bytes(u"source.wav"_s, wav(rising, 2, 44100));
    for (const QString &name : {u"a.wav"_s, u"a.mov"_s, u"a.flac"_s, u"a.m4a"_s, u"a.mp3"_s}) {
        const QString file = media.ffmpeg(name, source, {u"-i"_s, u"IN"_s, u"-ac"_s, u"2"_s});
        decodeFile(file, [&](int descriptor) {
            auto opened = decode::AudioReader::open(descriptor);
            EXPECT_TRUE(opened) << name.toStdString();
            decode::AudioReader &reader = **opened;
            EXPECT_EQ(reader.sampleRate(), 44100);
            EXPECT_EQ(reader.channels(), 2);
            const auto read = [&](int count) {
                std::vector<float> left(static_cast<size_t>(count), 0.0F), right(left);
                float *planes[]{left.data(), right.data()};
                const int got = reader.read(planes, count).value_or(-1);
                left.resize(static_cast<size_t>(std::max(got, 0)));
                return left;
            };
            const std::vector<float> all = read(200'000);
            EXPECT_NEAR(double(all.size()), 4 * 44100.0, name == u"a.mp3"_s ? 1200 : 0) << name.toStdString();
            for (const int from : {100'001, 3, 0, 170'000, 99'999}) {
                EXPECT_TRUE(reader.seek(from));
                const std::vector<float> piece = read(2000);
                EXPECT_EQ(piece.size(), 2000U);
                for (size_t i = 0; i < piece.size(); ++i) {
                    if (std::abs(piece[i] - all[size_t(from) + i]) > 1e-3F) {
                        ADD_FAILURE() << name.toStdString() << " from " << from << " at " << i;
                        break;
                    }
                }
            }
            EXPECT_TRUE(reader.seek(int64_t(all.size())));
            EXPECT_TRUE(read(10).empty());
            return 0;
        });
    }
}

} // namespace cratewell::test
