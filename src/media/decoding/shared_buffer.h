#pragma once

#include "media/decoding/decode_request.h"
#include "platform/posix/file_descriptor.h"

#include <memory>

namespace cratewell {

// The memory a worker puts its answers in: of a fixed, sealed size, read-only for this process. Pages that
// were never written take no memory.
class SharedBuffer
{
public:
    static Result<std::unique_ptr<SharedBuffer>> create();
    ~SharedBuffer();
    SharedBuffer(const SharedBuffer &) = delete;
    SharedBuffer &operator=(const SharedBuffer &) = delete;

    int descriptor() const { return m_memory.number(); }
    // A copy of what a reply to this request announces; an error when the reply cannot be true.
    DecodeResult answer(const DecodeRequest &request, const worker::Reply &reply) const;

private:
    SharedBuffer(FileDescriptor memory, const uchar *bytes) : m_memory(std::move(memory)), m_bytes(bytes) {}
    DecodeResult picture(int maxSide, const worker::Reply &reply) const;
    DecodeResult peaks(int count, const worker::Reply &reply) const;

    FileDescriptor m_memory;
    const uchar *m_bytes;
};

} // namespace cratewell
