#include "vault/files/vault_folders.h"

#include "vault/category.h"
#include "vault/files/disk.h"
#include "vault/files/trash_index.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace cratewell {

namespace {

constexpr int folderFlags = O_RDONLY | O_DIRECTORY;

// The last folder on the way to `place` that may be a link; nothing where links are followed all the way.
std::optional<Location> anchorOf(const Location &root, const Location &place)
{
    if (const std::optional<VaultCategory> category = categoryOf(root, place))
        return categoryFolder(root, *category);
    const Location trash = trashFolder(root);
    return place == trash || place.isInside(trash) ? std::optional(root) : std::nullopt;
}

QByteArray relativePath(const Location &place, const Location &above)
{
    return place == above ? QByteArray(".") : place.bytes().sliced(above.bytes().size() + 1);
}

Result<void> makeFoldersBelow(const Location &anchor, const Location &folder)
{
    Result<FileDescriptor> current = openFile(anchor, folderFlags);
    for (const QByteArray &name : relativePath(folder, anchor).split('/')) {
        if (!current)
            return tl::unexpected(current.error());
        if (::mkdirat(current->number(), name.constData(), 0777) != 0 && errno != EEXIST)
            return systemFailure(errno, folder.name());
        current = openBeneath(current->number(), name, folderFlags);
    }
    return current.map([](const FileDescriptor &) {});
}

} // namespace

Result<FileDescriptor> openVaultFolder(const Location &root, const Location &folder)
{
    const std::optional<Location> anchor = anchorOf(root, folder);
    if (!anchor)
        return openFile(folder, folderFlags);
    return openFile(*anchor, folderFlags).and_then([&](const FileDescriptor &opened) {
        return openBeneath(opened.number(), relativePath(folder, *anchor), folderFlags);
    });
}

Result<void> checkVaultFolder(const Location &root, const Location &folder)
{
    if (!anchorOf(root, folder))
        return {};
    return openVaultFolder(root, folder).map([](const FileDescriptor &) {});
}

Result<void> makeVaultFolders(const Location &root, const Location &folder)
{
    if (folder.isInside(root) && !disk::exists(root))
        return systemFailure(ENOENT, folder.name());
    const std::optional<Location> anchor = anchorOf(root, folder);
    return disk::makeFolders(anchor.value_or(folder)).and_then([&] {
        return anchor ? makeFoldersBelow(*anchor, folder) : Result<void>();
    });
}

} // namespace cratewell
