#include "platform/internal/folder_listing.h"

#include "platform/location.h"

#include <QHash>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace cratewell {

namespace {

std::chrono::system_clock::time_point timeOf(const timespec &time)
{
    using namespace std::chrono;
    return system_clock::time_point(
        duration_cast<system_clock::duration>(seconds(time.tv_sec) + nanoseconds(time.tv_nsec)));
}

#ifdef Q_OS_MACOS
const timespec &modified(const struct stat &facts)
{
    return facts.st_mtimespec;
}
const timespec &statusChanged(const struct stat &facts)
{
    return facts.st_ctimespec;
}
#else
const timespec &modified(const struct stat &facts)
{
    return facts.st_mtim;
}
const timespec &statusChanged(const struct stat &facts)
{
    return facts.st_ctim;
}
#endif

quint64 digestOf(QByteArrayView name, const struct stat &facts)
{
    // A folder's own time and size move with its content, which has a listing of its own.
    if (S_ISDIR(facts.st_mode))
        return qHashMulti(0, name, quint64(facts.st_ino), quint64(facts.st_mode));
    return qHashMulti(0, name, quint64(facts.st_ino), quint64(facts.st_mode), quint64(facts.st_size),
                      quint64(modified(facts).tv_sec), quint64(modified(facts).tv_nsec));
}

} // namespace

FolderListing FolderListing::read(const QByteArray &path, Detail detail, Links links)
{
    FolderListing listing;
    const int noFollow = links == Links::Keep ? O_NOFOLLOW : 0;
    const int descriptor = ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | noFollow);
    if (descriptor < 0)
        return listing;
    const std::unique_ptr<DIR, int (*)(DIR *)> folder(::fdopendir(descriptor), ::closedir);
    if (!folder) {
        ::close(descriptor);
        return listing;
    }
    struct stat facts = {};
    if (::fstat(descriptor, &facts) == 0)
        listing.changed = timeOf(statusChanged(facts));
    listing.opened = true;
    while (const dirent *entry = ::readdir(folder.get())) {
        if (isHiddenName(entry->d_name))
            continue;
        bool isFolder = entry->d_type == DT_DIR;
        if (detail == Detail::Digest || entry->d_type == DT_UNKNOWN) {
            if (::fstatat(descriptor, entry->d_name, &facts, AT_SYMLINK_NOFOLLOW) != 0)
                continue;
            isFolder = S_ISDIR(facts.st_mode);
            listing.digest += digestOf(entry->d_name, facts);
        }
        if (isFolder)
            listing.folders.emplace_back(entry->d_name);
    }
    return listing;
}

} // namespace cratewell
