#include "platform/internal/system_calls.h"
#include "platform/posix/file_descriptor.h"

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

FileStatus statusFrom(const struct stat &facts)
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

int openOnce(int folder, const QByteArray &name, int flags, mode_t mode)
{
    int number = -1;
    do
        number = ::openat(folder, name.constData(), flags | O_NOFOLLOW | O_CLOEXEC, mode);
    while (number < 0 && errno == EINTR);
    if (number < 0) {
        const int code = errno;
        // A link where a folder is asked for is reported as "not a folder".
        return -(code == ENOTDIR && isLink(folder, name.constData()) ? ELOOP : code);
    }
#ifdef O_PATH
    // This one opens links themselves.
    struct stat facts = {};
    if (flags & O_PATH && ::fstat(number, &facts) == 0 && S_ISLNK(facts.st_mode)) {
        ::close(number);
        return -ELOOP;
    }
#endif
    return number;
}

} // namespace

// Folder by folder, each opened in the one before it: whatever is renamed meanwhile, no step leaves `root`.
int openBeneath(int root, const QByteArray &relativePath, int flags, mode_t mode)
{
    QByteArrayList names = relativePath.split('/');
    names.removeAll(QByteArray());
    if (names.isEmpty())
        return -ENOENT;
    const QByteArray last = names.takeLast();
    FileDescriptor folder;
    for (const QByteArray &name : std::as_const(names)) {
        const int from = folder.isOpen() ? folder.number() : root;
        const int number = openOnce(from, name, passThrough | O_DIRECTORY, 0);
        if (number < 0)
            return number;
        folder = FileDescriptor(number);
    }
    const int asFolder = relativePath.endsWith('/') ? O_DIRECTORY : 0;
    return openOnce(folder.isOpen() ? folder.number() : root, last, flags | asFolder, mode);
}

int statusAt(int folder, const char *name, Links links, Freshness, FileStatus &status)
{
    struct stat facts = {};
    if (::fstatat(folder, name, &facts, links == Links::NoFollow ? AT_SYMLINK_NOFOLLOW : 0) != 0)
        return errno;
    status = statusFrom(facts);
    return 0;
}

int statusOf(int descriptor, FileStatus &status)
{
    struct stat facts = {};
    if (::fstat(descriptor, &facts) != 0)
        return errno;
    status = statusFrom(facts);
    return 0;
}

int createSharedMemory(qint64 bytes)
{
    // Some systems allow 31 characters.
    const QByteArray name = "/cratewell-" + QByteArray::number(QRandomGenerator::system()->generate64(), 16);
    FileDescriptor memory(::shm_open(name.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!memory.isOpen())
        return -errno;
    ::shm_unlink(name.constData());
    if (::ftruncate(memory.number(), off_t(bytes)) != 0)
        return -errno;
    return memory.release();
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
