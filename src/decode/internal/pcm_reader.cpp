#include "decode/internal/pcm_reader.h"

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace cratewell::decode {

namespace {

constexpr int64_t bufferBytes = 128 * 1024;

int64_t sizeOf(int descriptor)
{
    struct stat info = {};
    return fstat(descriptor, &info) == 0 ? info.st_size : 0;
}

// As much as there is of what was asked for.
int64_t readAt(int descriptor, uint8_t *to, int64_t count, int64_t position)
{
    int64_t done = 0;
    while (done < count) {
        const ssize_t got = pread(descriptor, to + done, size_t(count - done), position + done);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        done += got;
    }
    return done;
}

} // namespace

PcmReader::PcmReader(int descriptor, const AVCodecParameters &parameters, SampleKind kind)
    : m_descriptor(descriptor), m_sampleRate(parameters.sample_rate),
      m_channels(parameters.ch_layout.nb_channels), m_kind(kind), m_frameBytes(kind.bytes() * m_channels)
{
}

std::unique_ptr<PcmReader> PcmReader::create(MediaContainer &container, const AVStream &stream)
{
    const AVCodecParameters &parameters = *stream.codecpar;
    const auto kind = SampleKind::ofPcm(parameters.codec_id);
    const int frameBytes = kind ? kind->bytes() * parameters.ch_layout.nb_channels : 0;
    if (!kind || (parameters.block_align != 0 && parameters.block_align != frameBytes) ||
        frameBytes > bufferBytes)
        return nullptr;
    std::unique_ptr<PcmReader> reader(new PcmReader(container.descriptor(), parameters, *kind));
    const int64_t fileSize = sizeOf(container.descriptor());
    if (container.isNamed("wav") || container.isNamed("w64") || container.isNamed("aiff") ||
        container.isNamed("caf"))
        reader->findSingleRun(container, stream, fileSize);
    else if (container.isNamed("mov"))
        reader->findIndexedRuns(stream, fileSize);
    if (reader->m_runs.empty())
        return nullptr;
    reader->m_buffer.resize(size_t(bufferBytes));
    return reader;
}

// The header has been read up to where the samples begin. Reading a packet would tell as well, but makes
// FFmpeg search the samples for compressed sound in disguise, which takes longer than all the rest.
void PcmReader::findSingleRun(MediaContainer &container, const AVStream &stream, int64_t fileSize)
{
    const int64_t claimed = stream.duration > 0 && av_cmp_q(stream.time_base, {1, m_sampleRate}) == 0
                                ? stream.duration
                                : INT64_MAX;
    addRun(avio_tell(container.format().pb), claimed, fileSize);
}

void PcmReader::findIndexedRuns(const AVStream &stream, int64_t fileSize)
{
    if (av_cmp_q(stream.time_base, {1, m_sampleRate}) != 0)
        return;
    auto *indexed = const_cast<AVStream *>(&stream); // the getters only read
    const int entries = avformat_index_get_entries_count(indexed);
    for (int i = 0; i < entries; ++i) {
        const AVIndexEntry *entry = avformat_index_get_entry(indexed, i);
        if (entry->size % m_frameBytes != 0 || entry->timestamp != m_length)
            return m_runs.clear();
        addRun(entry->pos, entry->size / m_frameBytes, fileSize);
    }
    // An edit list may have cut what the samples hold.
    if (stream.duration != m_length)
        m_runs.clear();
}

void PcmReader::addRun(int64_t position, int64_t frames, int64_t fileSize)
{
    frames = std::min(frames, (fileSize - position) / m_frameBytes);
    if (position < 0 || frames <= 0)
        return;
    if (!m_runs.empty() && m_runs.back().position + m_runs.back().frames * m_frameBytes == position)
        m_runs.back().frames += frames;
    else
        m_runs.push_back({.firstFrame = m_length, .frames = frames, .position = position});
    m_length += frames;
}

Decoded<void> PcmReader::seek(int64_t frame)
{
    m_frame = std::clamp<int64_t>(frame, 0, m_length);
    const auto after =
        std::upper_bound(m_runs.begin(), m_runs.end(), m_frame,
                         [](int64_t wanted, const Run &run) { return wanted < run.firstFrame; });
    m_run = size_t(after - m_runs.begin()) - 1;
    return {};
}

// Places that are less than a page of memory apart are read together, for reading every page costs less than
// asking for most of them one by one.
const uint8_t *PcmReader::bytesAt(int64_t position, int64_t count)
{
    if (position < m_bufferBegin || position + count > m_bufferEnd) {
        constexpr int64_t page = 4096;
        const bool isNear = position >= m_bufferBegin && position < m_bufferEnd + page;
        m_bufferBegin = position;
        m_bufferEnd =
            position + readAt(m_descriptor, m_buffer.data(), isNear ? bufferBytes : count, position);
        if (m_bufferEnd < position + count)
            return nullptr;
    }
    return m_buffer.data() + (position - m_bufferBegin);
}

Decoded<int64_t> PcmReader::skip(int64_t count)
{
    const int64_t before = m_frame;
    m_frame += std::min(count, m_length - m_frame);
    while (m_frame >= m_runs[m_run].firstFrame + m_runs[m_run].frames && m_run + 1 < m_runs.size())
        ++m_run;
    return m_frame - before;
}

Decoded<int> PcmReader::read(float *const *planes, int count)
{
    int done = 0;
    while (done < count && m_frame < m_length) {
        const Run &run = m_runs[m_run];
        const int64_t within = m_frame - run.firstFrame;
        if (within == run.frames) {
            ++m_run;
            continue;
        }
        const auto now =
            int(std::min({int64_t{count} - done, run.frames - within, bufferBytes / m_frameBytes}));
        const uint8_t *bytes = bytesAt(run.position + within * m_frameBytes, int64_t{now} * m_frameBytes);
        if (!bytes)
            return failed("the sound cannot be read");
        for (int channel = 0; channel < m_channels; ++channel)
            toFloats(m_kind, bytes + channel * m_kind.bytes(), m_frameBytes, planes[channel] + done, now);
        done += now;
        m_frame += now;
    }
    return done;
}

} // namespace cratewell::decode
