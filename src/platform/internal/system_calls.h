#pragma once

#include "platform/posix/file_descriptor.h"
#include "platform/posix/file_status.h"

namespace cratewell {

// What Linux does in one call of its own and every other system in several; the contracts are those of the
// public headers. Both ways are built wherever they can be, so that both are tested; the program uses one.
namespace portable {
[[nodiscard]] Result<FileDescriptor> openBeneath(int root, const QByteArray &relativePath, int flags,
                                                 mode_t mode);
[[nodiscard]] Result<FileStatus> statusAt(int folder, const char *name, Links links, Freshness freshness);
[[nodiscard]] Result<FileStatus> statusOf(int descriptor);
[[nodiscard]] Result<FileDescriptor> createSharedMemory(qint64 bytes);
void discardPages(int sharedMemory, qint64 bytes);
void closeOnExecFrom(int first);
} // namespace portable

#ifdef Q_OS_LINUX
// Each turns to the portable way where the kernel is too old for the call or a sandbox forbids it.
namespace native {
[[nodiscard]] Result<FileDescriptor> openBeneath(int root, const QByteArray &relativePath, int flags,
                                                 mode_t mode);
[[nodiscard]] Result<FileStatus> statusAt(int folder, const char *name, Links links, Freshness freshness);
[[nodiscard]] Result<FileStatus> statusOf(int descriptor);
[[nodiscard]] Result<FileDescriptor> createSharedMemory(qint64 bytes);
void discardPages(int sharedMemory, qint64 bytes);
void closeOnExecFrom(int first);
} // namespace native
#endif

#if defined(Q_OS_LINUX) && !defined(CRATEWELL_PORTABLE_SYSTEM_CALLS)
namespace chosen = native;
#else
namespace chosen = portable;
#endif

} // namespace cratewell
