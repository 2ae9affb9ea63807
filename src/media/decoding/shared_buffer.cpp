#include "media/decoding/shared_buffer.h"

#include "platform/posix/shared_memory.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/mman.h>

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

tl::unexpected<Error> impossible()
{
    return tl::unexpected(Error{u"The decoder answered with something impossible"_s});
}

} // namespace

Result<std::unique_ptr<SharedBuffer>> SharedBuffer::create()
{
    auto memory = createSharedMemory(qint64(worker::memoryBytes));
    if (!memory)
        return tl::unexpected(memory.error());
    void *bytes = mmap(nullptr, worker::memoryBytes, PROT_READ, MAP_SHARED, memory->number(), 0);
    if (bytes == MAP_FAILED)
        return systemFailure(errno);
    return std::unique_ptr<SharedBuffer>(
        new SharedBuffer(std::move(*memory), static_cast<const uchar *>(bytes)));
}

SharedBuffer::~SharedBuffer()
{
    munmap(const_cast<uchar *>(m_bytes), worker::memoryBytes);
}

DecodeResult SharedBuffer::answer(const DecodeRequest &request, const worker::Reply &reply) const
{
    if (!reply.info.isPossible())
        return impossible();
    switch (request.kind) {
    case worker::JobKind::VideoFrame:
    case worker::JobKind::StillImage:
        return picture(request.maxSide, reply);
    case worker::JobKind::AudioPeaks:
        return peaks(request.count, reply);
    case worker::JobKind::Info:
        return DecodedFile{.info = reply.info, .image = {}, .peaks = {}};
    }
    return impossible();
}

DecodeResult SharedBuffer::picture(int maxSide, const worker::Reply &reply) const
{
    const qint64 width = reply.width, height = reply.height, most = std::min(maxSide, worker::maxPictureSide);
    if (width < 1 || height < 1 || width > most || height > most ||
        reply.bytes != quint64(width * height * 4))
        return impossible();
    const bool hasAlpha = reply.hasAlpha != 0;
    QImage image(int(width), int(height),
                 hasAlpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    if (image.isNull())
        return tl::unexpected(DecodeFailure(Error::fromErrno(ENOMEM), DecodeFailure::Fault::OfSystem));
    std::memcpy(image.bits(), m_bytes, reply.bytes);

    // What a large picture took is not kept for the small ones that follow.
    constexpr quint64 usual = 4 << 20;
    if (reply.bytes > usual)
        discardPages(m_memory.number(), qint64(worker::memoryBytes));
    return DecodedFile{.info = reply.info, .image = image, .peaks = {}};
}

// Copied before they are looked at: the worker can still write to the memory.
DecodeResult SharedBuffer::peaks(int count, const worker::Reply &reply) const
{
    if (count < 1 || count > worker::maxPeakCount || reply.bytes != quint64(count) * sizeof(float))
        return impossible();
    WaveformPeaks peaks(count);
    std::memcpy(peaks.data(), m_bytes, reply.bytes);
    if (!std::all_of(peaks.cbegin(), peaks.cend(), [](float peak) { return peak >= 0 && peak <= 1; }))
        return impossible();
    return DecodedFile{.info = reply.info, .image = {}, .peaks = peaks};
}

} // namespace cratewell
