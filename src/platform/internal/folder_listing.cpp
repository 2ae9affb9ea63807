#include "platform/internal/folder_listing.h"

#include "platform/posix/file_descriptor.h"

#include <QHash>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>

namespace cratewell {

namespace {

quint64 digestOf(QByteArrayView name, const FileStatus &status)
{
    // A folder's own time and size move with its content, which has a listing of its own.
    if (status.isFolder())
        return qHashMulti(0, name, status.inode, quint64(status.mode));
    return qHashMulti(0, name, status.inode, quint64(status.mode), status.size,
                      qint64(status.modified.count()));
}

// At the end errno is 0.
const dirent *nextEntry(DIR *folder)
{
    errno = 0;
    return ::readdir(folder);
}

} // namespace

Result<FolderListing> FolderListing::read(const QByteArray &path, Detail detail, Links links)
{
    const int noFollow = links == Links::NoFollow ? O_NOFOLLOW : 0;
    Result<FileDescriptor> opened = openAt(AT_FDCWD, path, O_RDONLY | O_DIRECTORY | noFollow);
    if (!opened)
        return tl::unexpected(opened.error());
    const std::unique_ptr<DIR, int (*)(DIR *)> folder(::fdopendir(opened->number()), ::closedir);
    if (!folder)
        return systemFailure(errno);
    const int descriptor = opened->release();
    FolderListing listing;
    if (const Result<FileStatus> own = statusOf(descriptor))
        listing.changed = std::chrono::system_clock::time_point(
            std::chrono::duration_cast<std::chrono::system_clock::duration>(own->changed));
    while (const dirent *entry = nextEntry(folder.get())) {
        if (isHiddenName(entry->d_name))
            continue;
        bool isFolder = entry->d_type == DT_DIR;
        if (detail == Detail::Digest || entry->d_type == DT_UNKNOWN) {
            const Result<FileStatus> status = statusAt(descriptor, entry->d_name, Links::NoFollow);
            if (!status)
                continue;
            isFolder = status->isFolder();
            listing.digest += digestOf(entry->d_name, *status);
        }
        if (isFolder)
            listing.folders.emplace_back(entry->d_name);
    }
    if (errno != 0)
        return systemFailure(errno);
    return listing;
}

} // namespace cratewell
