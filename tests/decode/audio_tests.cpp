#include "decode/audio_peaks.h"
#include "decode/audio_reader.h"
#include "decoding.h"

#include <gmock/gmock.h>
#include <random>

namespace cratewell::test {

using Samples = std::vector<int16_t>; // interleaved

Samples noise(size_t count, int loudest = 32767)
{
    std::minstd_rand chance(7);
    Samples samples(count);
    for (int16_t &sample : samples)
        sample = int16_t(int(chance() % unsigned(2 * loudest + 1)) - loudest);
    return samples;
}

// By the frames that count, named one by one.
std::vector<float> expectedPeaks(const Samples &samples, int channels = 1, int count = 240)
{
    const int frames = int(samples.size()) / channels, bucket = frames < count ? 1 : frames / count;
    const int step = frames / count < 96 ? 1 : bucket / 96;
    std::vector<float> peaks(size_t(count), 0.0F);
    for (int frame = 0; frame < std::min(frames, bucket * count); ++frame) {
        float &peak = peaks[size_t(frame / bucket)];
        for (int channel = 0; channel < channels && frame % bucket % step == 0; ++channel)
            peak = std::max(peak, std::abs(float(samples[size_t(frame * channels + channel)])) / 32768);
    }
    const float largest = std::max(*std::ranges::max_element(peaks), 0.0001F);
    for (float &peak : peaks)
        peak /= largest;
    return peaks;
}

auto areNear(const std::vector<float> &expected, float tolerance = 1e-6F)
{
    return testing::Pointwise(testing::FloatNear(tolerance), expected);
}

class Sound : public testing::Test
{
protected:
    QString wav(const Samples &samples, int channels = 1, int rate = 8000)
    {
        const QByteArray bytes(reinterpret_cast<const char *>(samples.data()), qsizetype(2 * samples.size()));
        return m_media.ffmpeg(u"a.wav"_s, m_media.bytes(u"raw"_s, bytes),
                              u"-f s16le -ar %1 -ac %2 -i IN -bitexact"_s.arg(rate).arg(channels));
    }
    static std::vector<float> peaksOf(const QString &file, int count = 240)
    {
        const auto peaks =
            decodeFile(file, [&](int descriptor) { return decode::audioPeaks(descriptor, count); });
        EXPECT_TRUE(peaks) << file.toStdString() << ": " << peaks.error();
        return peaks.value_or(std::vector<float>());
    }

    MadeMedia m_media;
};

TEST_F(Sound, PeaksLookWhereTheArithmeticSays)
{
    for (const auto &[frames, channels] :
         {std::pair(1, 1), {239, 2}, {241, 3}, {240 * 96, 2}, {240 * 191, 1}, {240 * 192 + 5, 3}}) {
        const Samples samples = noise(size_t(frames * channels), frames % 2 == 0 ? 32767 : 500);
        EXPECT_THAT(peaksOf(wav(samples, channels)), areNear(expectedPeaks(samples, channels)))
            << frames << " frames of " << channels;
    }
    EXPECT_EQ(peaksOf(wav(Samples(20'000)), 7), std::vector<float>(7, 0.0F));
    // Quieter than a ten-thousandth stays quiet.
    EXPECT_NEAR(peaksOf(wav(Samples(20'000, 1))).front(), 1 / 32768.0 / 0.0001, 1e-5);
}

TEST_F(Sound, PeaksEndAfterFiveMinutes)
{
    Samples samples = noise(300'000, 5000);
    const std::vector<float> expected = expectedPeaks(samples);
    samples.resize(400'000, int16_t(32767));
    const QString file = wav(samples, 1, 1000);
    EXPECT_THAT(peaksOf(file), areNear(expected));
    EXPECT_THAT(peaksOf(m_media.ffmpeg(u"long.flac"_s, file, u"-i IN"_s)), areNear(expected));
}

// The same samples in every wrapping; lossy ones of a sound that coding hardly changes.
TEST_F(Sound, PeaksAreTheSameInEveryFormat)
{
    Samples samples(44100 * 3);
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] = int16_t(std::sin(double(i) * 0.05) * 20000 * (1 - double(i % 44100) / 44100));
    const QString source = wav(samples, 1, 44100);
    for (const auto &[name, encoder, tolerance] : {std::tuple(u"a.aiff"_s, u"pcm_s16be"_s, 1e-6F),
                                                   {u"deep.aiff"_s, u"pcm_s24be"_s, 1e-6F},
                                                   {u"deep.wav"_s, u"pcm_s24le"_s, 1e-6F},
                                                   {u"wide.wav"_s, u"pcm_s32le"_s, 1e-6F},
                                                   {u"float.wav"_s, u"pcm_f32le"_s, 1e-6F},
                                                   {u"double.wav"_s, u"pcm_f64le"_s, 1e-6F},
                                                   {u"small.wav"_s, u"pcm_u8"_s, 0.02F},
                                                   {u"law.wav"_s, u"pcm_mulaw"_s, 0.05F},
                                                   {u"a.caf"_s, u"pcm_s16be"_s, 1e-6F},
                                                   {u"a.mov"_s, u"pcm_s16le"_s, 1e-6F},
                                                   {u"a.mkv"_s, u"pcm_s16le"_s, 1e-6F},
                                                   {u"a.flac"_s, u"flac"_s, 1e-6F},
                                                   {u"deep.flac"_s, u"flac -sample_fmt s32"_s, 1e-6F},
                                                   {u"lossless.m4a"_s, u"alac"_s, 1e-6F},
                                                   {u"a.mp3"_s, u"mp3 -b:a 256k"_s, 0.04F},
                                                   {u"bare.mp3"_s, u"mp3 -b:a 256k -write_xing 0"_s, 1.0F},
                                                   {u"a.m4a"_s, u"aac -b:a 256k"_s, 0.04F},
                                                   {u"a.aac"_s, u"aac -b:a 256k"_s, 1.0F}})
        EXPECT_THAT(peaksOf(m_media.ffmpeg(name, source, u"-i IN -c:a "_s + encoder)),
                    areNear(expectedPeaks(samples), tolerance))
            << name.toStdString();
}

TEST_F(Sound, PeaksOfDamagedFilesAreOfWhatIsThereOrFail)
{
    Samples samples = noise(50'000);
    const QString file = wav(samples);
    const QByteArray whole = MadeMedia::content(file);
    const QByteArray flac = MadeMedia::content(m_media.ffmpeg(u"a.flac"_s, file, u"-i IN"_s));
    EXPECT_EQ(peaksOf(m_media.bytes(u"cut.flac"_s, flac.left(flac.size() / 2))).size(), 240U);
    const auto changed = [&](int place, const QByteArray &by) {
        return QByteArray(whole).replace(place, by.size(), by);
    };
    const QByteArray manyChannels = changed(22, "\xff\xff"), noRate = changed(24, QByteArray(4, '\0'));
    for (const QByteArray &bad : {QByteArray(), whole.left(44), whole.left(20), manyChannels, noRate}) {
        const auto peaks = decodeFile(m_media.bytes(u"bad.wav"_s, bad),
                                      [](int descriptor) { return decode::audioPeaks(descriptor, 240); });
        EXPECT_TRUE(!peaks || peaks->size() == 240) << bad.size();
    }
    // Lengths that nobody went back to fill in.
    const QByteArray streamed = changed(4, "\xff\xff\xff\xff").replace(40, 4, "\xff\xff\xff\xff");
    EXPECT_THAT(peaksOf(m_media.bytes(u"streamed.wav"_s, streamed)), areNear(expectedPeaks(samples)));
    samples.resize(25'000);
    EXPECT_THAT(peaksOf(m_media.bytes(u"cut.wav"_s, whole.left(44 + 50'000))),
                areNear(expectedPeaks(samples)));
}

// What is read after a jump is what reading on would have given.
TEST_F(Sound, IsReadOnFromAnyFrame)
{
    Samples rising(2 * 44100 * 4); // of a pitch that tells where it is; coders make up noise anew each time
    for (size_t i = 0; i < rising.size(); ++i) {
        const auto frame = double(i - i % 2) / 2;
        rising[i] = int16_t(8000 * std::sin(frame * frame * 5e-7));
    }
    const QString source = wav(rising, 2, 44100);
    for (const QString &name : {u"copy.wav"_s, u"a.mov"_s, u"a.flac"_s, u"a.m4a"_s, u"a.mp3"_s}) {
        SCOPED_TRACE(name.toStdString());
        decodeFile(m_media.ffmpeg(name, source, u"-i IN -ac 2"_s), [&](int descriptor) {
            const auto reader = decode::AudioReader::open(descriptor).value();
            const auto read = [&](int count) {
                std::vector<float> left(size_t(count), 0.0F), right(left);
                float *planes[]{left.data(), right.data()};
                left.resize(size_t(reader->read(planes, count).value_or(0)));
                return left;
            };
            const std::vector<float> all = read(200'000);
            EXPECT_NEAR(double(all.size()), 4 * 44100.0, name == u"a.mp3"_s ? 1200 : 0);
            for (const size_t from : {100'001, 3, 0, 170'000, 99'999}) {
                EXPECT_TRUE(reader->seek(int64_t(from)));
                EXPECT_THAT(read(2000), areNear({&all[from], &all[from + 2000]}, 1e-3F)) << from;
            }
            EXPECT_TRUE(reader->seek(int64_t(all.size())));
            EXPECT_TRUE(read(10).empty());
            return 0;
        });
    }
}

} // namespace cratewell::test
