#include "platform/internal/system_calls.h"

#include <QRandomGenerator>
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace cratewell::portable {

namespace {

#ifdef O_PATH
constexpr int passThrough = O_PATH;
#else
constexpr int passThrough = O_RDONLY;
#endif

std::chrono::nanoseconds sinceEpoch(const timespec &time)
{
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

FileStatus from(const struct stat &facts)
{
    FileStatus status;
    status.mode = facts.st_mode;
    status.device = quint64(facts.st_dev);
    status.inode = quint64(facts.st_ino);
    status.size = qint64(facts.st_size);
#ifdef Q_OS_MACOS
    status.modified = sinceEpoch(facts.st_mtimespec);
    status.changed = sinceEpoch(facts.st_ctimespec);
    status.created = sinceEpoch(facts.st_birthtimespec);
#else
    status.modified = sinceEpoch(facts.st_mtim);
    status.changed = sinceEpoch(facts.st_ctim);
#endif
    return status;
}

bool isLink(int folder, const char *name)
{
    struct stat facts = {};
    return ::fstatat(folder, name, &facts, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(facts.st_mode);
}

Result<FileDescriptor> openOnce(int folder, const QByteArray &name, int flags, mode_t mode)
{
    Result<FileDescriptor> opened = openAt(folder, name, flags | O_NOFOLLOW, mode);
    // A link where a folder is asked for is reported as "not a folder".
    if (!opened && opened.error().is(ENOTDIR) && isLink(folder, name.constData()))
        return systemFailure(ELOOP);
#ifdef O_PATH
    // This one opens links themselves.
    struct stat facts = {};
    if (opened && flags & O_PATH && ::fstat(opened->number(), &facts) == 0 && S_ISLNK(facts.st_mode))
        return systemFailure(ELOOP);
#endif
    return opened;
}

} // namespace

// Folder by folder, each opened in the one before it: whatever is renamed meanwhile, no step leaves `root`.
Result<FileDescriptor> openBeneath(int root, const QByteArray &relativePath, int flags, mode_t mode)
{
    QByteArrayList names = relativePath.split('/');
    names.removeAll(QByteArray());
    if (names.isEmpty())
        return systemFailure(ENOENT);
    const QByteArray last = names.takeLast();
    FileDescriptor folder;
    for (const QByteArray &name : std::as_const(names)) {
        const int from = folder.isOpen() ? folder.number() : root;
        Result<FileDescriptor> next = openOnce(from, name, passThrough | O_DIRECTORY, 0);
        if (!next)
            return next;
        folder = std::move(*next);
    }
    const int asFolder = relativePath.endsWith('/') ? O_DIRECTORY : 0;
    return openOnce(folder.isOpen() ? folder.number() : root, last, flags | asFolder, mode);
}

Result<FileStatus> statusAt(int folder, const char *name, Links links, Freshness)
{
    struct stat facts = {};
    if (::fstatat(folder, name, &facts, links == Links::NoFollow ? AT_SYMLINK_NOFOLLOW : 0) != 0)
        return systemFailure(errno);
    return from(facts);
}

Result<FileStatus> statusOf(int descriptor)
{
    struct stat facts = {};
    if (::fstat(descriptor, &facts) != 0)
        return systemFailure(errno);
    return from(facts);
}

Result<FileDescriptor> createSharedMemory(qint64 bytes)
{
    // Some systems allow 31 characters.
    const QByteArray name = "/cratewell-" + QByteArray::number(QRandomGenerator::system()->generate64(), 16);
    FileDescriptor memory(::shm_open(name.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!memory.isOpen())
        return systemFailure(errno);
    ::shm_unlink(name.constData());
    if (::ftruncate(memory.number(), off_t(bytes)) != 0)
        return systemFailure(errno);
    return memory;
}

void discardPages(int, qint64) {}

// There is no telling which are open between fork and exec; beyond this number nobody has any.
void closeOnExecFrom(int first)
{
    constexpr long most = 1 << 16;
    const long limit = ::sysconf(_SC_OPEN_MAX);
    for (int number = first; number < (limit < 0 ? most : std::min(limit, most)); ++number)
        ::fcntl(number, F_SETFD, FD_CLOEXEC);
}

} // namespace cratewell::portable
