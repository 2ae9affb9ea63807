#include "decode/internal/descriptor_input.h"

#include <cerrno>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

namespace cratewell::decode {

DescriptorInput::DescriptorInput(int descriptor) : m_descriptor(descriptor)
{
    constexpr int bufferSize = 64 * 1024;
    if (auto *buffer = static_cast<unsigned char *>(av_malloc(bufferSize))) {
        m_context = avio_alloc_context(buffer, bufferSize, 0, this, &read, nullptr, &seek);
        if (!m_context)
            av_free(buffer);
    }
}

DescriptorInput::~DescriptorInput()
{
    if (m_context)
        av_freep(&m_context->buffer);
    avio_context_free(&m_context);
}

int DescriptorInput::read(void *self, uint8_t *to, int size)
{
    auto *input = static_cast<DescriptorInput *>(self);
    ssize_t got = 0;
    do
        got = pread(input->m_descriptor, to, size_t(size), input->m_position);
    while (got < 0 && errno == EINTR);
    if (got < 0)
        return AVERROR(errno);
    if (got == 0)
        return AVERROR_EOF;
    input->m_position += got;
    return int(got);
}

int64_t DescriptorInput::seek(void *self, int64_t offset, int whence)
{
    auto *input = static_cast<DescriptorInput *>(self);
    struct stat info = {};
    if (fstat(input->m_descriptor, &info) != 0)
        return AVERROR(errno);
    whence &= ~AVSEEK_FORCE;
    if (whence == AVSEEK_SIZE)
        return info.st_size;
    if (whence == SEEK_CUR)
        offset += input->m_position;
    else if (whence == SEEK_END)
        offset += info.st_size;
    if (offset < 0)
        return AVERROR(EINVAL);
    return input->m_position = offset;
}

} // namespace cratewell::decode
