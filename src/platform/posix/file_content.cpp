#include "platform/posix/file_content.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace cratewell {

namespace {

constexpr size_t readStep = 1 << 16;

// O_NONBLOCK: what lies there may be a pipe that nobody writes to.
int readFlags(Links links)
{
    return O_RDONLY | O_NONBLOCK | (links == Links::NoFollow ? O_NOFOLLOW : 0);
}

Result<FileDescriptor> onlyRegular(Result<FileDescriptor> opened, const QString &name)
{
    if (!opened)
        return opened;
    struct stat facts = {};
    if (::fstat(opened->number(), &facts) != 0) {
        const int code = errno;
        return systemFailure(code, name);
    }
    if (S_ISREG(facts.st_mode))
        return opened;
    return systemFailure(S_ISDIR(facts.st_mode) ? EISDIR : EINVAL, name);
}

} // namespace

Result<FileDescriptor> openRegularFile(const Location &file, Links links)
{
    return onlyRegular(openFile(file, readFlags(links)), file.name());
}

Result<FileDescriptor> openRegularFileAt(int folder, const QByteArray &name, Links links)
{
    return onlyRegular(openAt(folder, name, readFlags(links)), textFromBytes(name));
}

Result<QByteArray> readBounded(const Location &file, qint64 limit, Links links)
{
    const Result<FileDescriptor> opened = openRegularFile(file, links);
    if (!opened)
        return tl::unexpected(opened.error());
    const Result<QByteArray> bytes = readBounded(opened->number(), limit);
    return bytes ? bytes : systemFailure(bytes.error().code, file.name());
}

Result<QByteArray> readBounded(int descriptor, qint64 limit)
{
    QByteArray bytes;
    std::array<char, readStep> step;
    while (true) {
        const ssize_t count = ::read(descriptor, step.data(), step.size());
        if (count == 0)
            return bytes;
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return systemFailure(errno);
        if (bytes.size() + count > limit)
            return systemFailure(EFBIG);
        bytes.append(step.data(), count);
    }
}

Result<void> writeAll(int descriptor, QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), size_t(bytes.size()));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return systemFailure(written < 0 ? errno : EIO);
        bytes = bytes.sliced(written);
    }
    return {};
}

} // namespace cratewell
