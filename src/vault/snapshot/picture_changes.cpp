#include "vault/snapshot/picture_changes.h"
#include "vault/vault_scan.h"

namespace cratewell {

namespace {

// The same chunk means the same positions; only the numbers in the flat lists differ.
void matchSharedChunk(const PictureFolder &before, const PictureFolder &after,
                      std::vector<AssetIndex> &previous)
{
    for (const FolderRun &run : after.runs) {
        for (quint32 i = 0; i < run.count; ++i)
            previous[run.first + i] = before.indexOf(run.position + i);
    }
}

void matchByName(const PictureFolder &before, const PictureFolder &after, std::vector<AssetIndex> &previous)
{
    for (const FolderRun &run : after.runs) {
        for (quint32 i = 0; i < run.count; ++i) {
            if (const auto position = before.chunk->find(after.chunk->name(run.position + i)))
                previous[run.first + i] = before.indexOf(*position);
        }
    }
}

} // namespace

std::vector<AssetIndex> previousIndices(const PictureData &before, const PictureData &after)
{
    std::vector<AssetIndex> previous(after.assets.size(), noAsset);
    for (const PictureFolder &folder : after.folders) {
        const PictureFolder *earlier = before.folder(folder.chunk->url);
        if (!earlier)
            continue;
        if (earlier->chunk == folder.chunk)
            matchSharedChunk(*earlier, folder, previous);
        else
            matchByName(*earlier, folder, previous);
    }
    return previous;
}

bool isSame(const Asset &a, const Asset &b)
{
    return &a == &b || (a == b && a.version == b.version);
}

VaultChanges VaultScan::compare(std::shared_ptr<const VaultPicture> before,
                                std::shared_ptr<const VaultPicture> after)
{
    static const PictureData nothing;
    const PictureData &from = before ? *before->d : nothing;
    const PictureData &to = after ? *after->d : nothing;
    VaultChanges changes;
    changes.previous = previousIndices(from, to);
    std::vector<bool> kept(from.assets.size());
    for (AssetIndex i = 0; i < changes.previous.size(); ++i) {
        const AssetIndex earlier = changes.previous[i];
        if (earlier == noAsset)
            continue;
        kept[earlier] = true;
        if (!isSame(from.asset(earlier), to.asset(i)))
            changes.altered.push_back(i);
    }
    for (AssetIndex i = 0; i < kept.size(); ++i) {
        if (!kept[i])
            changes.removed.push_back(i);
    }
    changes.before = std::move(before);
    changes.after = std::move(after);
    return changes;
}

} // namespace cratewell
