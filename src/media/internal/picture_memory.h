#pragma once

#include "platform/error.h"
#include "worker/protocol.h"

#include <QImage>
#include <memory>

namespace cratewell {

// The memory a worker puts its pictures in: of a fixed, sealed size, read-only for this process. Pages that
// were never written take no memory.
class PictureMemory
{
public:
    static Result<std::unique_ptr<PictureMemory>> create();
    ~PictureMemory();
    PictureMemory(const PictureMemory &) = delete;
    PictureMemory &operator=(const PictureMemory &) = delete;

    int descriptor() const { return m_descriptor; }
    // A copy of the picture a reply tells of; null when the reply cannot be true.
    QImage picture(const worker::Reply &reply) const;

private:
    explicit PictureMemory(int descriptor) : m_descriptor(descriptor) {}

    int m_descriptor;
    const uchar *m_bytes = nullptr;
};

} // namespace cratewell
