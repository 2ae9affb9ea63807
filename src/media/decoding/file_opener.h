#pragma once

#include "media/decoding/decode_failure.h"
#include "platform/location.h"
#include "platform/posix/file_descriptor.h"

#include <QFuture>

namespace cratewell {

using OpenedFile = tl::expected<FileDescriptor, DecodeFailure>;

// Opens a regular file for reading on a thread of its own, because a disk that has gone away may keep the
// call for ever; a future that is dropped closes what comes late. While too many calls hang, fails at once.
// What is no regular file (a pipe, a device, a folder) is refused without waiting for it.
QFuture<OpenedFile> openForReading(const Location &file);

} // namespace cratewell
