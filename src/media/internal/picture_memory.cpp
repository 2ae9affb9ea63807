#include "media/internal/picture_memory.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace cratewell {

Result<std::unique_ptr<PictureMemory>> PictureMemory::create()
{
    const auto failure = [] { return tl::unexpected(Error::fromErrno(errno)); };
    const int descriptor = memfd_create("cratewell-pictures", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    if (descriptor < 0)
        return failure();
    std::unique_ptr<PictureMemory> memory(new PictureMemory(descriptor));
    if (ftruncate(descriptor, off_t(worker::pictureBytes)) != 0 ||
        fcntl(descriptor, F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) != 0)
        return failure();
    void *bytes = mmap(nullptr, worker::pictureBytes, PROT_READ, MAP_SHARED, descriptor, 0);
    if (bytes == MAP_FAILED)
        return failure();
    memory->m_bytes = static_cast<const uchar *>(bytes);
    return memory;
}

PictureMemory::~PictureMemory()
{
    if (m_bytes)
        munmap(const_cast<uchar *>(m_bytes), worker::pictureBytes);
    close(m_descriptor);
}

QImage PictureMemory::picture(const worker::Reply &reply) const
{
    const qint64 width = reply.width, height = reply.height;
    if (width < 1 || height < 1 || width > worker::maxPictureSide || height > worker::maxPictureSide ||
        reply.bytes != quint64(width * height * 4))
        return {};
    QImage image(int(width), int(height), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return {};
    std::memcpy(image.bits(), m_bytes, reply.bytes);

    // What a large picture took is not kept for the small ones that follow.
    constexpr quint64 usual = 4 << 20;
    if (reply.bytes > usual)
        fallocate(m_descriptor, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, 0, off_t(worker::pictureBytes));
    return image;
}

} // namespace cratewell
