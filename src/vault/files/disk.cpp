#include "vault/files/disk.h"

#include "platform/posix/file_status.h"

#include <cerrno>
#include <filesystem>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cratewell::disk {

namespace {

Result<void> resultOf(int returned)
{
    if (returned != 0)
        return systemFailure(errno);
    return {};
}

Result<FileStatus> statusOfPlace(const Location &place)
{
    return statusAt(AT_FDCWD, place.c_str(), Links::NoFollow);
}

// A folder that may not be written to keeps what is in it, from its owner as well.
void makeWritable(const std::filesystem::path &place)
{
    std::error_code ignored;
    if (std::filesystem::symlink_status(place, ignored).type() != std::filesystem::file_type::directory)
        return;
    std::filesystem::permissions(place, std::filesystem::perms::owner_all, std::filesystem::perm_options::add,
                                 ignored);
    for (std::filesystem::directory_iterator entry(place, ignored), end; entry != end;
         entry.increment(ignored))
        makeWritable(entry->path());
}

} // namespace

bool exists(const Location &place)
{
    return statusOfPlace(place).has_value();
}

bool isFolder(const Location &place)
{
    const Result<FileStatus> status = statusOfPlace(place);
    return status && status->isFolder();
}

Result<std::vector<QByteArray>> names(const Location &folder)
{
    const std::unique_ptr<DIR, int (*)(DIR *)> listing(::opendir(folder.c_str()), &::closedir);
    if (!listing)
        return systemFailure(errno);
    std::vector<QByteArray> found;
    for (;;) {
        errno = 0;
        const dirent *entry = ::readdir(listing.get());
        if (!entry)
            break;
        const QByteArrayView name(entry->d_name);
        if (name != "." && name != "..")
            found.push_back(name.toByteArray());
    }
    if (errno != 0)
        return systemFailure(errno);
    return found;
}

qint64 sizeOf(const Location &place)
{
    const Result<FileStatus> status = statusOfPlace(place);
    if (!status)
        return 0;
    if (!status->isFolder())
        return status->size;
    qint64 sum = 0;
    for (const QByteArray &name : names(place).value_or(std::vector<QByteArray>()))
        sum += sizeOf(place.child(name));
    return sum;
}

Result<void> makeFolders(const Location &folder)
{
    const Result<void> made = makeFolder(folder);
    if (made || (!made.error().is(ENOENT) && !made.error().is(EEXIST)))
        return made;
    if (made.error().is(ENOENT) && folder != folder.parent())
        return makeFolders(folder.parent()).and_then([&] { return makeFolders(folder); });
    const Result<FileStatus> there = statusAt(AT_FDCWD, folder.c_str(), Links::Follow);
    return there && there->isFolder() ? Result<void>() : made;
}

Result<void> makeFolder(const Location &folder)
{
    return resultOf(::mkdir(folder.c_str(), 0777));
}

Result<void> remove(const Location &place)
{
    const std::filesystem::path path(place.bytes().toStdString());
    std::error_code error;
    std::filesystem::remove_all(path, error);
    if (error == std::errc::permission_denied) {
        makeWritable(path);
        std::filesystem::remove_all(path, error);
    }
    if (error)
        return systemFailure(error.value());
    return {};
}

Result<void> removeFolder(const Location &folder)
{
    return resultOf(::rmdir(folder.c_str()));
}

} // namespace cratewell::disk
