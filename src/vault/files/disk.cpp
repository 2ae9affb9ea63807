#include "vault/files/disk.h"

#include "vault/files/operation_progress.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#ifdef __linux__
#include <linux/fs.h>
#include <sys/ioctl.h>
#endif

namespace cratewell::disk {

namespace {

constexpr size_t copyStep = size_t{16} << 20;
constexpr size_t bufferSize = size_t{1} << 20;

std::filesystem::path native(const Location &place)
{
    return {place.bytes().constData(), place.bytes().constData() + place.bytes().size()};
}

// A descriptor that is closed.
class Descriptor
{
public:
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    ~Descriptor()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    Q_DISABLE_COPY_MOVE(Descriptor)

    operator int() const { return m_descriptor; }
    // Some file systems tell only here that the disk is full.
    int close() { return ::close(std::exchange(m_descriptor, -1)) == 0 ? 0 : errno; }

private:
    int m_descriptor;
};

int look(const Location &place, struct stat &facts)
{
    return ::lstat(place.c_str(), &facts) == 0 ? 0 : errno;
}

int writeAll(int descriptor, const char *bytes, size_t count)
{
    while (count > 0) {
        const ssize_t written = ::write(descriptor, bytes, count);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return written < 0 ? errno : EIO;
        bytes += written;
        count -= size_t(written);
    }
    return 0;
}

int copyThroughMemory(int from, int to, OperationProgress &progress)
{
    const auto buffer = std::make_unique_for_overwrite<char[]>(bufferSize);
    for (;;) {
        if (progress.canceled)
            return ECANCELED;
        const ssize_t got = ::read(from, buffer.get(), bufferSize);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return got < 0 ? errno : 0;
        if (const int error = writeAll(to, buffer.get(), size_t(got)))
            return error;
        progress.bytesDone += got;
    }
}

#ifdef __linux__

int copyBytes(int from, int to, qint64 size, OperationProgress &progress)
{
    if (size > 0 && ::ioctl(to, FICLONE, from) == 0) {
        progress.bytesDone += size;
        return 0;
    }
    qint64 copied = 0;
    for (;;) {
        if (progress.canceled)
            return ECANCELED;
        const ssize_t got = ::copy_file_range(from, nullptr, to, nullptr, copyStep, 0);
        if (got > 0) {
            copied += got;
            progress.bytesDone += got;
            continue;
        }
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0 && copied > 0)
            return errno;
        // The kernel cannot copy between these two, or says of a file it makes itself that it is empty.
        return got < 0 || copied < size ? copyThroughMemory(from, to, progress) : 0;
    }
}

int claimedRename(const char *from, const char *to)
{
    return ::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0 ? 0 : errno;
}

int flushSystemOf(int descriptor)
{
    return ::syncfs(descriptor) == 0 ? 0 : errno;
}

#else

int copyBytes(int from, int to, qint64, OperationProgress &progress)
{
    return copyThroughMemory(from, to, progress);
}

int claimedRename(const char *from, const char *to)
{
    return ::renamex_np(from, to, RENAME_EXCL) == 0 ? 0 : errno;
}

int flushSystemOf(int descriptor)
{
    ::sync();
    return ::fsync(descriptor) == 0 ? 0 : errno;
}

#endif

// For file systems that know no renaming without replacing: a hard link claims a file's name, where there are
// none an empty file does. A folder is never put over a folder with something in it.
int renameByClaim(const Location &from, const Location &to)
{
    if (exists(to))
        return EEXIST;
    if (isFolder(from))
        return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno == ENOTEMPTY ? EEXIST : errno;
    if (::link(from.c_str(), to.c_str()) == 0)
        return ::unlink(from.c_str()) == 0 ? 0 : errno;
    if (errno != EPERM && errno != EOPNOTSUPP && errno != ENOSYS)
        return errno;
    const Descriptor claim(::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (claim < 0)
        return errno;
    if (::rename(from.c_str(), to.c_str()) == 0)
        return 0;
    const int error = errno;
    ::unlink(to.c_str());
    return error;
}

void takeOverTimes(int descriptor, const struct stat &facts)
{
#ifdef __APPLE__
    const timespec times[] = {facts.st_atimespec, facts.st_mtimespec};
#else
    const timespec times[] = {facts.st_atim, facts.st_mtim};
#endif
    ::futimens(descriptor, times);
}

int copyOpened(int from, const Location &to, const struct stat &facts, OperationProgress &progress)
{
    Descriptor target(::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (target < 0)
        return errno;
    int error = copyBytes(from, target, facts.st_size, progress);
    if (!error) {
        // Some file systems have no permissions or times of their own to set.
        ::fchmod(target, facts.st_mode & 0777);
        takeOverTimes(target, facts);
        error = target.close();
    }
    if (error)
        ::unlink(to.c_str());
    return error;
}

int copyLink(const Location &from, const Location &to, qint64 size)
{
    QByteArray target(std::max<qint64>(size, 255) + 1, Qt::Uninitialized);
    const ssize_t length = ::readlink(from.c_str(), target.data(), size_t(target.size()));
    if (length < 0 || length == target.size())
        return length < 0 ? errno : ENAMETOOLONG;
    target.truncate(length);
    return ::symlink(target.constData(), to.c_str()) == 0 ? 0 : errno;
}

int copyFolder(const Location &from, const Location &to, const struct stat &facts,
               OperationProgress &progress)
{
    if (const int error = makeFolder(to))
        return error;
    for (const QByteArray &name : names(from)) {
        if (const int error = copyTree(from.child(name), to.child(name), progress)) {
            remove(to);
            return error;
        }
    }
    const Descriptor made(::open(to.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    ::fchmod(made, facts.st_mode & 0777);
    takeOverTimes(made, facts);
    return 0;
}

} // namespace

bool exists(const Location &place)
{
    struct stat facts;
    return look(place, facts) == 0;
}

bool isFolder(const Location &place)
{
    struct stat facts;
    return look(place, facts) == 0 && S_ISDIR(facts.st_mode);
}

std::vector<QByteArray> names(const Location &folder)
{
    std::vector<QByteArray> found;
    const std::unique_ptr<DIR, int (*)(DIR *)> listing(::opendir(folder.c_str()), &::closedir);
    while (const dirent *entry = listing ? ::readdir(listing.get()) : nullptr) {
        const QByteArrayView name(entry->d_name);
        if (name != "." && name != "..")
            found.push_back(name.toByteArray());
    }
    return found;
}

qint64 sizeOf(const Location &place)
{
    struct stat facts;
    if (look(place, facts) != 0)
        return 0;
    if (!S_ISDIR(facts.st_mode))
        return facts.st_size;
    qint64 sum = 0;
    for (const QByteArray &name : names(place))
        sum += sizeOf(place.child(name));
    return sum;
}

int makeFolders(const Location &folder)
{
    const int error = makeFolder(folder);
    if (error == ENOENT && folder != folder.parent()) {
        const int above = makeFolders(folder.parent());
        return above ? above : makeFolders(folder);
    }
    struct stat facts;
    const bool there = error == EEXIST && ::stat(folder.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
    return there ? 0 : error;
}

int makeFolder(const Location &folder)
{
    return ::mkdir(folder.c_str(), 0777) == 0 ? 0 : errno;
}

int renameWithoutReplacing(const Location &from, const Location &to)
{
    const int error = claimedRename(from.c_str(), to.c_str());
    // EINVAL also says that a folder would go into itself; then the other way says so again.
    return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP ? renameByClaim(from, to) : error;
}

int copyFile(const Location &from, const Location &to, OperationProgress &progress)
{
    // Not waiting: what is called like a clip may be a pipe.
    const Descriptor source(::open(from.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat facts;
    if (source < 0 || ::fstat(source, &facts) != 0)
        return errno;
    return S_ISREG(facts.st_mode) ? copyOpened(source, to, facts, progress) : EINVAL;
}

int copyTree(const Location &from, const Location &to, OperationProgress &progress)
{
    struct stat facts;
    if (const int error = look(from, facts))
        return error;
    if (progress.canceled)
        return ECANCELED;
    if (S_ISDIR(facts.st_mode))
        return copyFolder(from, to, facts, progress);
    if (S_ISLNK(facts.st_mode))
        return copyLink(from, to, facts.st_size);
    return copyFile(from, to, progress);
}

int remove(const Location &place)
{
    std::error_code error;
    std::filesystem::remove_all(native(place), error);
    return error.value();
}

int removeFolder(const Location &folder)
{
    return ::rmdir(folder.c_str()) == 0 ? 0 : errno;
}

int flush(const Location &place)
{
    const Descriptor opened(::open(place.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    return opened < 0 ? errno : flushSystemOf(opened);
}

int replace(const Location &file, const QByteArray &bytes)
{
    const Location fresh = file.parent().child(QByteArray(file.nameBytes().toByteArray() + ".new"));
    Descriptor target(::open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (target < 0)
        return errno;
    int error = writeAll(target, bytes.constData(), size_t(bytes.size()));
    if (!error && ::fsync(target) != 0)
        error = errno;
    const int closed = target.close();
    error = error ? error : closed;
    if (!error && ::rename(fresh.c_str(), file.c_str()) != 0)
        error = errno;
    if (error)
        ::unlink(fresh.c_str());
    return error;
}

} // namespace cratewell::disk
