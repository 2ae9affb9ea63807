#pragma once

#include "platform/posix/file_status.h"

namespace cratewell {

// What Linux does in one call of its own and every other system in several. Both ways are built wherever they
// can be, so that both are tested; the program uses one. Results are a descriptor or a negative errno value,
// and 0 or an errno value where nothing is opened.
namespace portable {
int openBeneath(int root, const QByteArray &relativePath, int flags, mode_t mode);
int statusAt(int folder, const char *name, Links links, Freshness freshness, FileStatus &status);
int statusOf(int descriptor, FileStatus &status);
int createSharedMemory(qint64 bytes);
void discardPages(int sharedMemory, qint64 bytes);
void closeOnExecFrom(int first);
} // namespace portable

#ifdef Q_OS_LINUX
// Each turns to the portable way where the kernel is too old for the call or a sandbox forbids it.
namespace native {
int openBeneath(int root, const QByteArray &relativePath, int flags, mode_t mode);
int statusAt(int folder, const char *name, Links links, Freshness freshness, FileStatus &status);
int statusOf(int descriptor, FileStatus &status);
int createSharedMemory(qint64 bytes);
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
