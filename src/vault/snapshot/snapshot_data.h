#pragma once

#include "vault/scan/folder_contents.h"
#include "vault/vault_snapshot.h"

#include <QHash>

namespace cratewell {

// A part of a folder's own assets that follow each other in the flat list; a subfolder's assets lie between
// two of them.
struct FolderRun
{
    quint32 position = 0; // of the first, within the contents
    AssetIndex first = 0;
    quint32 count = 0;
};

// The same, seen from the flat list.
struct FlatRun
{
    const FolderContents *contents = nullptr;
    quint32 position = 0;
    AssetIndex first = 0;
    quint32 count = 0;
};

struct SnapshotFolder
{
    std::shared_ptr<const FolderContents> contents;
    std::vector<FolderRun> runs; // ascending
    const FolderNode *node = nullptr;

    AssetIndex indexOf(quint32 position) const;
};

// What a snapshot is made of. Filled by SnapshotBuilder, never changed afterwards.
struct SnapshotData
{
    Location root;
    bool scanned = false;
    std::vector<SnapshotFolder> folders; // depth first in listing order, category after category
    std::vector<const Asset *> assets;   // the flat list; they live in the folders' contents
    std::vector<FlatRun> runs;           // ascending; all assets
    size_t nameBytes = 0;                // of all assets' names together
    QHash<Location, quint32> folderIndex;
    std::array<FolderNode, allCategories.size()> trees;
    std::array<std::vector<AssetIndex>, assetOrders.size()> orders;
    qint64 totalSize = 0;

    const SnapshotFolder *folder(const Location &url) const;
    const Asset &asset(AssetIndex index) const { return *assets[index]; }
};

struct VaultSnapshot::Private : SnapshotData
{
};

QByteArrayView baseNameOf(const Asset &asset);

} // namespace cratewell
