#pragma once

#include "media/decoding/decode_failure.h"
#include "platform/location.h"

#include <QFuture>
#include <memory>

namespace cratewell {

// An open file; closed with the last owner.
class OpenFile
{
public:
    explicit OpenFile(int descriptor) : m_descriptor(descriptor) {}
    ~OpenFile();
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;

    int descriptor() const { return m_descriptor; }

private:
    int m_descriptor;
};

using OpenedFile = tl::expected<std::shared_ptr<const OpenFile>, DecodeFailure>;

// Opens a regular file for reading on a thread of its own, because a disk that has gone away may keep the
// call for ever; a future that is dropped closes what comes late. While too many calls hang, fails at once.
// What is no regular file (a pipe, a device, a folder) is refused without waiting for it.
QFuture<OpenedFile> openForReading(const Location &file);

} // namespace cratewell
