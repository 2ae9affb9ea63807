#include "platform/internal/system_calls.h"

#include <cerrno>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace cratewell::native {

namespace {

std::chrono::nanoseconds sinceEpoch(const statx_timestamp &time)
{
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

Result<FileStatus> readStatus(int folder, const char *name, int flags)
{
    struct statx facts;
    if (::statx(folder, name, flags | AT_NO_AUTOMOUNT, STATX_BASIC_STATS | STATX_BTIME, &facts) != 0)
        return systemFailure(errno);
    FileStatus status{.mode = facts.stx_mode,
                      .device = makedev(facts.stx_dev_major, facts.stx_dev_minor),
                      .inode = facts.stx_ino,
                      .size = qint64(facts.stx_size),
                      .modified = sinceEpoch(facts.stx_mtime),
                      .changed = sinceEpoch(facts.stx_ctime),
                      .created = {}};
    if (facts.stx_mask & STATX_BTIME)
        status.created = sinceEpoch(facts.stx_btime);
    return status;
}

// A kernel without the call, or a sandbox of old that refuses what it does not know.
bool isMissing(int code)
{
    return code == ENOSYS || code == EPERM;
}

} // namespace

Result<FileDescriptor> openBeneath(int root, const QByteArray &relativePath, int flags, mode_t mode)
{
    open_how how = {};
    how.flags = quint64(flags) | O_CLOEXEC;
    how.mode = flags & O_CREAT ? mode : 0;
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
    long number = -1;
    // EAGAIN: something on the way was renamed meanwhile.
    do
        number = ::syscall(SYS_openat2, root, relativePath.constData(), &how, sizeof how);
    while (number < 0 && (errno == EINTR || errno == EAGAIN));
    if (number >= 0)
        return FileDescriptor(int(number));
    if (isMissing(errno))
        return portable::openBeneath(root, relativePath, flags, mode);
    return systemFailure(errno);
}

Result<FileStatus> statusAt(int folder, const char *name, Links links, Freshness freshness)
{
    const int follow = links == Links::NoFollow ? AT_SYMLINK_NOFOLLOW : 0;
    const int cached = freshness == Freshness::Cached ? AT_STATX_DONT_SYNC : AT_STATX_SYNC_AS_STAT;
    return readStatus(folder, name, follow | cached);
}

Result<FileStatus> statusOf(int descriptor)
{
    return readStatus(descriptor, "", AT_EMPTY_PATH);
}

Result<FileDescriptor> createSharedMemory(qint64 bytes)
{
    FileDescriptor memory(::memfd_create("cratewell", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (!memory.isOpen())
        return isMissing(errno) ? portable::createSharedMemory(bytes) : systemFailure(errno);
    if (::ftruncate(memory.number(), off_t(bytes)) != 0 ||
        ::fcntl(memory.number(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) != 0)
        return systemFailure(errno);
    return memory;
}

void discardPages(int sharedMemory, qint64 bytes)
{
    ::fallocate(sharedMemory, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, 0, off_t(bytes));
}

void closeOnExecFrom(int first)
{
    if (::close_range(unsigned(first), ~0U, CLOSE_RANGE_CLOEXEC) != 0)
        portable::closeOnExecFrom(first);
}

} // namespace cratewell::native
