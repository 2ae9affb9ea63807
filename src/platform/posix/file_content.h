#pragma once

#include "platform/posix/file_descriptor.h"
#include "platform/posix/file_status.h"

namespace cratewell {

// Opens a regular file for reading; never blocks. EISDIR for a folder, EINVAL for a pipe, socket or device,
// ELOOP for a link that is not to be followed.
[[nodiscard]] Result<FileDescriptor> openRegularFile(const Location &file, Links links);
[[nodiscard]] Result<FileDescriptor> openRegularFileAt(int folder, const QByteArray &name, Links links);

// All of a regular file, by the same rules; EFBIG when it is longer than `limit` bytes.
[[nodiscard]] Result<QByteArray> readBounded(const Location &file, qint64 limit, Links links);
// From the descriptor's position to the end. Blocks where the descriptor does.
[[nodiscard]] Result<QByteArray> readBounded(int descriptor, qint64 limit);

[[nodiscard]] Result<void> writeAll(int descriptor, QByteArrayView bytes);

} // namespace cratewell
