#include "vault/files/file_data.h"

#include "platform/posix/file_content.h"
#include "vault/files/operation_progress.h"

#include <QByteArray>

#include <algorithm>
#include <cerrno>
#include <memory>

#include <unistd.h>

#ifdef __linux__
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/xattr.h>
#else
#include <copyfile.h>
#endif

namespace cratewell::disk {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 kernelStep = qint64{16} << 20;
constexpr qint64 bufferSize = qint64{1} << 20;

#ifdef __linux__

bool clone(int from, int to)
{
    return ::ioctl(to, FICLONE, from) == 0;
}

// How many of these bytes the kernel copied; 0 when it cannot copy between these two.
qint64 copyInKernel(int from, int to, qint64 at, qint64 count)
{
    loff_t source = at;
    loff_t target = at;
    const ssize_t got = ::copy_file_range(from, &source, to, &target, size_t(std::min(count, kernelStep)), 0);
    return std::max<ssize_t>(got, 0);
}

#else

bool clone(int, int)
{
    return false;
}

qint64 copyInKernel(int, int, qint64, qint64)
{
    return 0;
}

#endif

class DataCopy
{
public:
    DataCopy(int from, int to, OperationProgress &progress) : m_from(from), m_to(to), m_progress(progress) {}

    // Where the bytes ended: `end`, or before it where the file did. Whatever the kernel's own copying meets
    // is met again by reading and writing, and reported there.
    Result<qint64> copy(qint64 at, qint64 end)
    {
        while (at < end) {
            if (m_progress.canceled)
                return systemFailure(ECANCELED);
            qint64 got = m_plain ? 0 : copyInKernel(m_from, m_to, at, end - at);
            if (got == 0) {
                m_plain = true;
                const Result<qint64> copied = copyThroughMemory(at, end - at);
                if (!copied || *copied == 0)
                    return copied.map([at](qint64) { return at; });
                got = *copied;
            }
            m_progress.bytesDone += got;
            at += got;
        }
        return at;
    }

private:
    Result<qint64> copyThroughMemory(qint64 at, qint64 count)
    {
        if (!m_buffer)
            m_buffer = std::make_unique_for_overwrite<char[]>(bufferSize);
        if (::lseek(m_from, at, SEEK_SET) < 0 || ::lseek(m_to, at, SEEK_SET) < 0)
            return systemFailure(errno);
        ssize_t got = 0;
        do {
            got = ::read(m_from, m_buffer.get(), size_t(std::min(count, bufferSize)));
        } while (got < 0 && errno == EINTR);
        if (got < 0)
            return systemFailure(errno);
        return writeAll(m_to, {m_buffer.get(), got}).map([got] { return qint64(got); });
    }

    const int m_from;
    const int m_to;
    OperationProgress &m_progress;
    std::unique_ptr<char[]> m_buffer;
    bool m_plain = false;
};

} // namespace

Result<void> copyData(int from, int to, qint64 size, OperationProgress &progress)
{
    if (progress.canceled)
        return systemFailure(ECANCELED);
    if (size > 0 && clone(from, to)) {
        progress.bytesDone += size;
        return {};
    }
    DataCopy copy(from, to, progress);
    for (qint64 at = 0; at < size;) {
        const off_t data = ::lseek(from, at, SEEK_DATA);
        if (data < 0 && errno == ENXIO) { // nothing but a hole
            progress.bytesDone += size - at;
            break;
        }
        const qint64 start = data < 0 ? at : std::min<qint64>(data, size);
        const off_t hole = data < 0 ? -1 : ::lseek(from, start, SEEK_HOLE);
        const qint64 stop = hole <= start ? size : std::min<qint64>(hole, size);
        progress.bytesDone += start - at;
        const Result<qint64> reached = copy.copy(start, stop);
        if (!reached)
            return tl::unexpected(reached.error());
        at = *reached;
        if (at < stop)
            return tl::unexpected(Error{u"Only a part of it could be read"_s});
    }
    if (::ftruncate(to, size) != 0)
        return systemFailure(errno);
    return {};
}

#ifdef __linux__

Result<void> copyAttributes(int from, int to)
{
    QByteArray names(std::max<ssize_t>(::flistxattr(from, nullptr, 0), 0), Qt::Uninitialized);
    const ssize_t length = ::flistxattr(from, names.data(), size_t(names.size()));
    if (length < 0)
        return errno == EOPNOTSUPP ? Result<void>() : systemFailure(errno);
    names.truncate(length);
    for (const QByteArray &name : names.split('\0')) {
        const bool accessList = name.startsWith("system.posix_acl_");
        if (!accessList && !name.startsWith("user."))
            continue;
        QByteArray value(std::max<ssize_t>(::fgetxattr(from, name.constData(), nullptr, 0), 0),
                         Qt::Uninitialized);
        const ssize_t size = ::fgetxattr(from, name.constData(), value.data(), size_t(value.size()));
        if (size < 0)
            return systemFailure(errno);
        const bool set = ::fsetxattr(to, name.constData(), value.constData(), size_t(size), 0) == 0;
        // Access lists are permissions, which not every file system has.
        if (!set && !accessList && errno != EOPNOTSUPP && errno != EPERM)
            return systemFailure(errno);
    }
    return {};
}

#else

Result<void> copyAttributes(int from, int to)
{
    if (::fcopyfile(from, to, nullptr, COPYFILE_XATTR | COPYFILE_ACL) != 0 && errno != ENOTSUP)
        return systemFailure(errno);
    return {};
}

#endif

} // namespace cratewell::disk
