#pragma once

#include "platform/posix/file_descriptor.h"
#include "platform/posix/file_status.h"
#include "vault/category.h"
#include "vault/scan/folder_contents.h"

#include <memory>
#include <vector>

#include <dirent.h>

namespace cratewell {

// One entry of a folder: a subfolder, or a file that is an asset by its name.
struct ListedEntry
{
    enum class Type : quint8 { Folder, File, Unlisted };

    quint32 nameStart = 0;
    quint16 nameSize = 0;
    Type type = Type::Unlisted;
    AssetKind kind = AssetKind::Video;
    double added = distantPast;
    FileVersion version; // its size is the asset's
};

// The direct entries of one folder in the order the system lists them: subfolders and the files its category
// accepts, nothing hidden. Reading names and reading details are two steps, since the second may be spread
// over threads. Both fail only when a later try may succeed (too many open files, a failing disk, a lost
// server); a folder that is missing or may not be read is empty.
class FolderReader
{
public:
    // Reads the names.
    static Result<std::unique_ptr<FolderReader>> open(const Location &folder, VaultCategory category,
                                                      Links links);

    // The same whatever path leads to the folder.
    struct Identity
    {
        quint64 device = 0;
        quint64 inode = 0;
        friend bool operator==(const Identity &, const Identity &) = default;
    };
    const Identity &identity() const { return m_identity; }

    const std::vector<ListedEntry> &entries() const { return m_entries; }
    QByteArrayView name(const ListedEntry &entry) const;

    // From now on it is the reader of an empty folder.
    void clear() { m_entries.clear(); }

    // Reads size, dates and version of the files among the entries [first, last). What turns out to be no
    // file becomes Unlisted; a file whose details could not be read has those of `earlier`, which may be
    // null. The error is the last one. Threads may read different ranges at a time.
    Result<void> readDetails(size_t first, size_t last, const FolderContents *earlier);

private:
    explicit FolderReader(VaultCategory category) : m_category(category) {}

    Result<void> readNames(FileDescriptor descriptor);
    Result<void> addEntry(QByteArrayView name, uchar directoryType);
    Result<void> readDetails(ListedEntry &entry) const;

    const VaultCategory m_category;
    std::unique_ptr<DIR, int (*)(DIR *)> m_folder{nullptr, ::closedir};
    Identity m_identity;
    std::vector<ListedEntry> m_entries;
    std::vector<char> m_names; // each closed by 0
};

} // namespace cratewell
