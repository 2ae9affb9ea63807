#include "platform/posix/file_descriptor.h"

#include "platform/internal/system_calls.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace cratewell {

namespace {

QString lastName(const QByteArray &path)
{
    return textFromBytes(path.sliced(path.lastIndexOf('/') + 1));
}

// Whoever begins with "/" or climbs with ".." means a place outside.
bool staysBeneath(const QByteArray &relativePath)
{
    return !relativePath.startsWith('/') && !relativePath.split('/').contains(QByteArrayLiteral(".."));
}

} // namespace

FileDescriptor &FileDescriptor::operator=(FileDescriptor &&other) noexcept
{
    if (this != &other) {
        if (isOpen())
            ::close(m_number);
        m_number = other.release();
    }
    return *this;
}

FileDescriptor::~FileDescriptor()
{
    if (isOpen())
        ::close(m_number);
}

Result<void> FileDescriptor::close()
{
    // Interrupted or not, the number is free afterwards: closing again could hit another thread's file.
    if (isOpen() && ::close(release()) != 0 && errno != EINTR)
        return systemFailure(errno);
    return {};
}

Result<FileDescriptor> openFile(const Location &file, int flags, mode_t mode)
{
    return openAt(AT_FDCWD, file.bytes(), flags, mode);
}

Result<FileDescriptor> openAt(int folder, const QByteArray &name, int flags, mode_t mode)
{
    int number = -1;
    do
        number = ::openat(folder, name.constData(), flags | O_CLOEXEC | O_NOCTTY, mode);
    while (number < 0 && errno == EINTR);
    if (number < 0) {
        const int code = errno;
        return systemFailure(code, lastName(name));
    }
    return FileDescriptor(number);
}

Result<FileDescriptor> openBeneath(int root, const QByteArray &relativePath, int flags, mode_t mode)
{
    if (!staysBeneath(relativePath))
        return systemFailure(EXDEV, textFromBytes(relativePath));
    Result<FileDescriptor> opened = chosen::openBeneath(root, relativePath, flags & ~O_NOFOLLOW, mode);
    return opened ? std::move(opened) : systemFailure(opened.error().code, lastName(relativePath));
}

Result<void> flush(int descriptor)
{
#ifdef F_FULLFSYNC
    if (::fcntl(descriptor, F_FULLFSYNC) == 0)
        return {};
#endif
    while (::fsync(descriptor) != 0) {
        // EINVAL: this file system has nothing to flush here.
        if (errno == EINVAL)
            return {};
        if (errno != EINTR)
            return systemFailure(errno);
    }
    return {};
}

void closeOnExecFrom(int first)
{
    chosen::closeOnExecFrom(first);
}

} // namespace cratewell
