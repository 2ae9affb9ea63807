#include "media/decoding/shared_buffer.h"

#include "platform/posix/shared_memory.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <sys/mman.h>

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

constexpr int mostFramesPerSecond = 100'000;
constexpr int mostChannels = 1024;
constexpr int mostSamplesPerSecond = 100'000'000;
constexpr double longest = 1e9; // seconds

tl::unexpected<Error> impossible()
{
    return tl::unexpected(Error{u"The decoder told of something impossible"_s});
}

bool isBetween(double low, double value, double high)
{
    return value >= low && value <= high; // false for what is no number
}

QString codecText(uint32_t code)
{
    std::array<char, 4> text = {};
    for (size_t i = 0; i < text.size(); ++i)
        text[i] = char(code >> (24 - 8 * i));
    if (!std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; }))
        return u"?"_s;
    return QString::fromLatin1(text.data(), text.size()).trimmed();
}

DecodeResult believed(const worker::FileInfo &info)
{
    const bool possible =
        isBetween(0, info.duration, longest) && isBetween(0, info.frameRate, mostFramesPerSecond) &&
        info.frames >= 0 && info.width >= 0 && info.height >= 0 && info.hasVideo <= 1 && info.hasAudio <= 1 &&
        isBetween(0, info.sampleRate, mostSamplesPerSecond) && isBetween(0, info.channels, mostChannels);
    if (!possible)
        return impossible();
    return MediaInfo{.duration = info.duration,
                     .width = info.width,
                     .height = info.height,
                     .frameRate = info.frameRate,
                     .codec = info.hasVideo == 1 ? codecText(info.codec) : QString(),
                     .sampleRate = info.sampleRate,
                     .channels = info.channels,
                     .frames = info.frames,
                     .hasVideo = info.hasVideo == 1,
                     .hasAudio = info.hasAudio == 1};
}

} // namespace

Result<std::unique_ptr<SharedBuffer>> SharedBuffer::create()
{
    Result<FileDescriptor> shared = createSharedMemory(qint64(worker::memoryBytes));
    if (!shared)
        return tl::unexpected(shared.error());
    std::unique_ptr<SharedBuffer> memory(new SharedBuffer(std::move(*shared)));
    void *bytes = mmap(nullptr, worker::memoryBytes, PROT_READ, MAP_SHARED, memory->descriptor(), 0);
    if (bytes == MAP_FAILED)
        return systemFailure(errno);
    memory->m_bytes = static_cast<const uchar *>(bytes);
    return memory;
}

SharedBuffer::~SharedBuffer()
{
    if (m_bytes)
        munmap(const_cast<uchar *>(m_bytes), worker::memoryBytes);
}

DecodeResult SharedBuffer::answer(const DecodeRequest &request, const worker::Reply &reply) const
{
    switch (request.kind) {
    case worker::JobKind::VideoFrame:
    case worker::JobKind::StillImage:
        return picture(request.maxSide, reply);
    case worker::JobKind::AudioPeaks:
        return peaks(request.count, reply);
    case worker::JobKind::Info:
        return believed(reply.info);
    }
    return impossible();
}

DecodeResult SharedBuffer::picture(int maxSide, const worker::Reply &reply) const
{
    const qint64 width = reply.width, height = reply.height, most = std::min(maxSide, worker::maxPictureSide);
    if (width < 1 || height < 1 || width > most || height > most ||
        reply.bytes != quint64(width * height * 4) || !isBetween(0, reply.duration, longest))
        return impossible();
    const bool hasAlpha = reply.hasAlpha != 0;
    QImage image(int(width), int(height),
                 hasAlpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    if (image.isNull())
        return tl::unexpected(Error::fromErrno(ENOMEM));
    std::memcpy(image.bits(), m_bytes, reply.bytes);

    // What a large picture took is not kept for the small ones that follow.
    constexpr quint64 usual = 4 << 20;
    if (reply.bytes > usual)
        discardPages(descriptor(), qint64(worker::memoryBytes));
    return DecodedPicture{.image = image, .duration = reply.duration};
}

// Copied before they are looked at: the worker can still write to the memory.
DecodeResult SharedBuffer::peaks(int count, const worker::Reply &reply) const
{
    if (count < 1 || count > worker::maxPeakCount || reply.bytes != quint64(count) * sizeof(float) ||
        !isBetween(0, reply.duration, longest))
        return impossible();
    WaveformPeaks peaks(count);
    std::memcpy(peaks.data(), m_bytes, reply.bytes);
    if (!std::all_of(peaks.cbegin(), peaks.cend(), [](float peak) { return isBetween(0, peak, 1); }))
        return impossible();
    return DecodedAudio{.peaks = peaks, .duration = reply.duration};
}

} // namespace cratewell
