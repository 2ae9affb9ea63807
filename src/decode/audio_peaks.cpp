#include "decode/audio_peaks.h"

#include "decode/audio_reader.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace cratewell::decode {

namespace {

constexpr int64_t longest = 300; // seconds
constexpr int64_t places = 96;   // looked at in each bucket

// The peaks of n frames, whose loudness is asked for in their order.
template<typename LoudnessAt> Decoded<std::vector<float>> peaksOf(int64_t n, int count, LoudnessAt loudnessAt)
{
    std::vector<float> peaks(size_t(count), 0.0F);
    const int64_t bucket = std::max<int64_t>(n / count, 1);
    const int64_t stride = n / count >= places ? bucket / places : 1;
    for (int64_t i = 0; i < count && i * bucket < n; ++i) {
        const int64_t start = i * bucket, end = std::min(start + bucket, n);
        for (int64_t frame = start; frame < end; frame += stride) {
            const Decoded<float> loudness = loudnessAt(frame);
            if (!loudness)
                return failed(loudness.error());
            peaks[size_t(i)] = std::max(peaks[size_t(i)], *loudness);
        }
    }
    const float largest = std::max(*std::max_element(peaks.begin(), peaks.end()), 0.0001F);
    for (float &peak : peaks)
        peak /= largest;
    return peaks;
}

Decoded<std::vector<float>> peaksWhereNeeded(AudioReader &reader, int64_t n, int count)
{
    std::vector<float> sample(size_t(reader.channels()));
    std::vector<float *> planes;
    planes.reserve(sample.size());
    for (float &channel : sample)
        planes.push_back(&channel);
    return peaksOf(n, count, [&](int64_t frame) -> Decoded<float> {
        auto read = reader.seek(frame).and_then([&] { return reader.read(planes.data(), 1); });
        if (!read)
            return failed(read.error());
        float loudness = 0;
        for (const float value : sample)
            loudness = std::max(loudness, std::abs(value));
        return loudness;
    });
}

// The loudest channel of each frame. Where the buckets lie is only known at the end, because containers of
// coded sound do not tell how many frames there are.
Decoded<std::vector<float>> loudnessOfAll(AudioReader &reader, int64_t most)
{
    constexpr int block = 4096;
    constexpr int64_t mostReserved = int64_t{1} << 25;
    std::vector<float> samples(size_t(reader.channels()) * block), loudness;
    std::vector<float *> planes;
    planes.reserve(size_t(reader.channels()));
    for (size_t channel = 0; channel < size_t(reader.channels()); ++channel)
        planes.push_back(samples.data() + channel * block);
    loudness.reserve(size_t(std::min({most, reader.length() + block, mostReserved})));

    while (int64_t(loudness.size()) < most) {
        const auto wanted = int(std::min<int64_t>(block, most - int64_t(loudness.size())));
        const Decoded<int> read = reader.read(planes.data(), wanted);
        if (!read)
            return failed(read.error());
        const size_t before = loudness.size();
        loudness.resize(before + size_t(*read), 0.0F);
        for (const float *plane : planes) {
            for (size_t i = 0; i < size_t(*read); ++i)
                loudness[before + i] = std::max(loudness[before + i], std::abs(plane[i]));
        }
        if (*read < wanted)
            break;
    }
    return loudness;
}

} // namespace

Decoded<std::vector<float>> audioPeaks(int descriptor, int count)
{
    const auto reader = AudioReader::open(descriptor);
    if (!reader)
        return failed(reader.error());
    const int64_t most = int64_t{(*reader)->sampleRate()} * longest;
    if ((*reader)->isRandomAccess())
        return peaksWhereNeeded(**reader, std::min((*reader)->length(), most), count);
    const auto loudness = loudnessOfAll(**reader, most);
    if (!loudness)
        return failed(loudness.error());
    if (loudness->empty())
        return failed("there is no sound in it");
    return peaksOf(int64_t(loudness->size()), count,
                   [&](int64_t frame) -> Decoded<float> { return (*loudness)[size_t(frame)]; });
}

} // namespace cratewell::decode
