#include "vault/files/write_barrier.h"

#include "platform/posix/file_status.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace cratewell {

namespace {

#ifdef __linux__

Result<void> flushFileSystem(int descriptor)
{
    if (::syncfs(descriptor) != 0)
        return systemFailure(errno);
    return {};
}

#else

Result<void> flushFileSystem(int descriptor)
{
    ::sync();
    return flush(descriptor);
}

#endif

} // namespace

Result<void> WriteBarrier::include(const Location &folder)
{
    const Result<FileStatus> status = statusAt(AT_FDCWD, folder.c_str(), Links::Follow);
    if (!status)
        return tl::unexpected(status.error());
    if (std::ranges::find(m_fileSystems, status->device, &FileSystem::device) != m_fileSystems.end())
        return {};
    Result<FileDescriptor> opened = openFile(folder, O_RDONLY | O_DIRECTORY);
    if (!opened)
        return tl::unexpected(opened.error());
    m_fileSystems.push_back({status->device, std::move(*opened)});
    return {};
}

Result<void> WriteBarrier::flush()
{
    Result<void> result;
    for (const FileSystem &one : m_fileSystems) {
        if (const Result<void> flushed = flushFileSystem(one.folder.number()); !flushed)
            result = flushed;
    }
    return result;
}

} // namespace cratewell
