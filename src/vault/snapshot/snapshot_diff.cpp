#include "vault/snapshot/snapshot_diff.h"
#include "vault/vault_scan.h"

namespace cratewell {

namespace {

// The same contents means the same positions; only the numbers in the flat lists differ.
void matchSharedContents(const SnapshotFolder &before, const SnapshotFolder &after,
                         std::vector<AssetIndex> &previous)
{
    for (const FolderRun &run : after.runs) {
        for (quint32 i = 0; i < run.count; ++i)
            previous[run.first + i] = before.indexOf(run.position + i);
    }
}

void matchByName(const SnapshotFolder &before, const SnapshotFolder &after, std::vector<AssetIndex> &previous)
{
    for (const FolderRun &run : after.runs) {
        for (quint32 i = 0; i < run.count; ++i) {
            if (const auto position = before.contents->find(after.contents->name(run.position + i)))
                previous[run.first + i] = before.indexOf(*position);
        }
    }
}

} // namespace

std::vector<AssetIndex> previousIndices(const SnapshotData &before, const SnapshotData &after)
{
    std::vector<AssetIndex> previous(after.assets.size(), noAsset);
    for (const SnapshotFolder &folder : after.folders) {
        const SnapshotFolder *earlier = before.folder(folder.contents->url);
        if (!earlier)
            continue;
        if (earlier->contents == folder.contents)
            matchSharedContents(*earlier, folder, previous);
        else
            matchByName(*earlier, folder, previous);
    }
    return previous;
}

bool isSame(const Asset &a, const Asset &b)
{
    return &a == &b || (a == b && a.version == b.version);
}

SnapshotDiff VaultScan::compare(std::shared_ptr<const VaultSnapshot> before,
                                std::shared_ptr<const VaultSnapshot> after)
{
    static const SnapshotData nothing;
    const SnapshotData &from = before ? *before->d : nothing;
    const SnapshotData &to = after ? *after->d : nothing;
    SnapshotDiff diff;
    diff.previous = previousIndices(from, to);
    std::vector<bool> kept(from.assets.size());
    for (AssetIndex i = 0; i < diff.previous.size(); ++i) {
        const AssetIndex earlier = diff.previous[i];
        if (earlier == noAsset)
            continue;
        kept[earlier] = true;
        if (!isSame(from.asset(earlier), to.asset(i)))
            diff.altered.push_back(i);
    }
    for (AssetIndex i = 0; i < kept.size(); ++i) {
        if (!kept[i])
            diff.removed.push_back(i);
    }
    diff.before = std::move(before);
    diff.after = std::move(after);
    return diff;
}

} // namespace cratewell
