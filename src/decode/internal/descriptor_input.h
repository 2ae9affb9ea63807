#pragma once

#include "decode/internal/ffmpeg_handles.h"

namespace cratewell::decode {

// Lets FFmpeg read an open regular file. Reads at positions of its own, so the descriptor's offset does not
// matter and does not change; the descriptor is borrowed and must outlive this.
class DescriptorInput
{
public:
    explicit DescriptorInput(int descriptor);
    ~DescriptorInput();
    DescriptorInput(const DescriptorInput &) = delete;
    DescriptorInput &operator=(const DescriptorInput &) = delete;

    // Null when there was no memory.
    AVIOContext *context() const { return m_context; }
    int descriptor() const { return m_descriptor; }

private:
    static int read(void *self, uint8_t *to, int size);
    static int64_t seek(void *self, int64_t offset, int whence);

    int m_descriptor;
    int64_t m_position = 0;
    AVIOContext *m_context = nullptr;
};

} // namespace cratewell::decode
