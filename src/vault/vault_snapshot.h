#pragma once

#include "vault/category.h"

#include <memory>
#include <span>
#include <vector>

namespace cratewell {

// The index of an asset in one snapshot's flat list.
using AssetIndex = quint32;
inline constexpr AssetIndex noAsset = ~AssetIndex{0};

struct AssetRange
{
    AssetIndex first = 0;
    AssetIndex last = 0; // one past the end
    bool contains(AssetIndex index) const { return index >= first && index < last; }
    AssetIndex count() const { return last - first; }
    friend bool operator==(const AssetRange &, const AssetRange &) = default;
};

// One folder of a category's tree. Children are in file-manager order.
struct FolderNode
{
    Location url;
    std::vector<FolderNode> children;
    int count = 0;     // assets in this folder and below
    AssetRange assets; // the same, as a run of the flat list

    friend bool operator==(const FolderNode &a, const FolderNode &b)
    {
        return a.count == b.count && a.url == b.url && a.children == b.children;
    }
};

struct FolderContents;

// Everything one scan saw: immutable and shared, safe on any thread. The flat list holds Overlays, then LUTs,
// then SFX, each depth first in directory order, so what lies under one folder is one run of it. The contents
// of a folder that did not change are shared with the snapshot before.
class VaultSnapshot
{
public:
    VaultSnapshot();
    ~VaultSnapshot();

    const Location &root() const;
    AssetIndex size() const;
    const Asset &asset(AssetIndex index) const;
    // Null for a snapshot that was never scanned.
    const FolderNode *tree(VaultCategory category) const;
    const FolderNode *node(const Location &folder) const;
    qint64 totalSize() const; // bytes

    std::optional<AssetIndex> find(const Location &url) const;
    // Empty for a folder that is not in a tree.
    AssetRange under(const Location &folder) const;

    // All indices in that order, equal ones in flat-list order: name as a file manager orders base names,
    // added newest first, kind by label and then base name by code point, size largest first.
    std::span<const AssetIndex> order(AssetOrder order) const;
    // One flag per asset: base name, name of the holding folder or kind label, lower-cased, contains
    // `needle`, which is lower-cased already and not empty.
    std::vector<bool> matching(const QString &needle) const;

private:
    friend class VaultScan;
    struct Private;
    std::unique_ptr<Private> d;
};

// From one published snapshot to the next.
struct SnapshotDiff
{
    std::shared_ptr<const VaultSnapshot> before;
    std::shared_ptr<const VaultSnapshot> after;
    // For each index of `after` the index of the asset at the same place in `before`, or noAsset.
    std::vector<AssetIndex> previous;
    // Indices of `after` whose asset or file version differs from the one before at the same place.
    std::vector<AssetIndex> altered;
    // Assets of `before` that are gone.
    std::vector<AssetIndex> removed;
};

} // namespace cratewell

Q_DECLARE_METATYPE(cratewell::SnapshotDiff)
