#pragma once

#include "vault/category.h"

#include <vector>

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
// over threads.
class FolderReader
{
public:
    enum class LinkedFolder { Follow, Refuse };

    // Reads the names; a folder that cannot be read is empty.
    FolderReader(const Location &folder, VaultCategory category, LinkedFolder linkedFolder);
    ~FolderReader();
    FolderReader(const FolderReader &) = delete;
    FolderReader &operator=(const FolderReader &) = delete;

    // What tells this folder from all others, whatever path led to it.
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
    // file becomes Unlisted. Threads may read different ranges at a time.
    void readDetails(size_t first, size_t last);

private:
    void readNames(VaultCategory category);
    void addEntry(QByteArrayView name, uchar directoryType, VaultCategory category);
    void readDetails(ListedEntry &entry) const;

    int m_descriptor = -1;
    Identity m_identity;
    std::vector<ListedEntry> m_entries;
    std::vector<char> m_names; // each closed by 0
};

} // namespace cratewell
