#include "decode/audio_peaks.h"

#include "decode/audio_reader.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace cratewell::decode {

namespace {

constexpr int64_t longest = 300; // seconds
constexpr int64_t places = 96;   // looked at in each bucket

// The peaks of n frames, whose loudness is asked for in their order; not more once it is none.
template<typename LoudnessAt> std::vector<float> peaksOf(int64_t n, int count, LoudnessAt loudnessAt)
{
    std::vector<float> peaks(size_t(count), 0.0F);
    const int64_t bucket = std::max<int64_t>(n / count, 1);
    const int64_t stride = n / count >= places ? bucket / places : 1;
    for (int64_t i = 0; i < count && i * bucket < n; ++i) {
        const int64_t start = i * bucket, end = std::min(start + bucket, n);
        for (int64_t frame = start; frame < end; frame += stride)
            peaks[size_t(i)] = std::max(peaks[size_t(i)], loudnessAt(frame));
    }
    const float largest = std::max(*std::max_element(peaks.begin(), peaks.end()), 0.0001F);
    for (float &peak : peaks)
        peak /= largest;
    return peaks;
}

std::vector<float *> planesOf(std::vector<float> &samples, size_t planeSize)
{
    std::vector<float *> planes;
    planes.reserve(samples.size() / planeSize);
    for (size_t at = 0; at < samples.size(); at += planeSize)
        planes.push_back(&samples[at]);
    return planes;
}

// Unpacks only the samples that count. Nothing when the sound turns out to have another length than n.
std::optional<std::vector<float>> peaksWhereNeeded(AudioReader &reader, int64_t n, int64_t most, int count)
{
    std::vector<float> sample(size_t(reader.channels()));
    const std::vector<float *> planes = planesOf(sample, 1);
    int64_t next = 0;
    bool asExpected = true;
    auto peaks = peaksOf(n, count, [&](int64_t frame) {
        asExpected =
            asExpected && reader.skip(frame - next) == frame - next && reader.read(planes.data(), 1) == 1;
        next = frame + 1;
        float loudness = 0;
        for (const float value : sample)
            loudness = std::max(loudness, std::abs(value));
        return loudness;
    });
    const bool endsThere =
        asExpected && reader.skip(n - next) == n - next && (n == most || reader.skip(1) == 0);
    return endsThere ? std::optional(std::move(peaks)) : std::nullopt;
}

// The loudest channel of each frame, for where only the end tells where the buckets lie.
Decoded<std::vector<float>> loudnessOfAll(AudioReader &reader, int64_t most)
{
    constexpr int block = 4096;
    constexpr int64_t mostReserved = int64_t{1} << 25;
    std::vector<float> samples(size_t(reader.channels()) * block), loudness;
    const std::vector<float *> planes = planesOf(samples, block);
    loudness.reserve(
        size_t(std::clamp<int64_t>(reader.length() + block, block, std::min(most, mostReserved) + block)));

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
    if ((*reader)->lengthIs() == AudioReader::Length::Known && (*reader)->length() > 0) {
        const int64_t n = std::min((*reader)->length(), most);
        if (auto peaks = peaksWhereNeeded(**reader, n, most, count))
            return std::move(*peaks);
        if (const auto back = (*reader)->seek(0); !back)
            return failed(back.error());
    }
    const auto loudness = loudnessOfAll(**reader, most);
    if (!loudness)
        return failed(loudness.error());
    if (loudness->empty())
        return failed("there is no sound in it");
    return peaksOf(int64_t(loudness->size()), count,
                   [&](int64_t frame) { return (*loudness)[size_t(frame)]; });
}

} // namespace cratewell::decode
