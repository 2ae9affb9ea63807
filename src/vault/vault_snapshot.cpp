#include "vault/snapshot/snapshot_data.h"

#include <algorithm>
#include <string_view>

namespace cratewell {

namespace {

void markName(const SnapshotFolder &folder, QByteArrayView needle, std::vector<bool> &matches)
{
    for (const FolderRun &run : folder.runs)
        folder.contents->names.mark(needle, matches, run.first, run.position, run.position + run.count);
}

void markKinds(const SnapshotFolder &folder, quint8 kinds, std::vector<bool> &matches)
{
    for (const FolderRun &run : folder.runs) {
        for (quint32 i = 0; i < run.count; ++i) {
            if (kindBit(folder.contents->assets[run.position + i].kind) & kinds)
                matches[run.first + i] = true;
        }
    }
}

void markAll(const SnapshotFolder &folder, std::vector<bool> &matches)
{
    for (const FolderRun &run : folder.runs)
        std::fill_n(matches.begin() + run.first, run.count, true);
}

quint8 kindsLabelled(const QString &needle)
{
    quint8 kinds = 0;
    for (const AssetKind kind : {AssetKind::Video, AssetKind::Image, AssetKind::Lut, AssetKind::Audio}) {
        if (kindLabel(kind).toLower().contains(needle))
            kinds |= kindBit(kind);
    }
    return kinds;
}

// Text that is not well formed has no UTF-8 to look for; comparing as text finds also what it holds of a
// name's stray bytes.
void markNameAsText(const SnapshotFolder &folder, const QString &needle, std::vector<bool> &matches)
{
    for (const FolderRun &run : folder.runs) {
        for (quint32 i = 0; i < run.count; ++i) {
            const QByteArrayView name = folder.contents->baseName(run.position + i);
            if (textFromBytes(name).toLower().contains(needle))
                matches[run.first + i] = true;
        }
    }
}

} // namespace

AssetIndex SnapshotFolder::indexOf(quint32 position) const
{
    const auto behind = std::ranges::upper_bound(runs, position, {}, &FolderRun::position);
    const FolderRun &run = *(behind - 1);
    return run.first + (position - run.position);
}

const SnapshotFolder *SnapshotData::folder(const Location &url) const
{
    const auto found = url.isEmpty() ? folderIndex.cend() : folderIndex.constFind(url);
    return found == folderIndex.cend() ? nullptr : &folders[*found];
}

QByteArrayView baseNameOf(const Asset &asset)
{
    const QByteArray &path = asset.url.bytes();
    const size_t slash = std::string_view(path.data(), size_t(path.size())).rfind('/');
    return baseNameOf(QByteArrayView(path).sliced(qsizetype(slash + 1)));
}

VaultSnapshot::VaultSnapshot() : d(std::make_unique<Private>()) {}

VaultSnapshot::~VaultSnapshot() = default;

const Location &VaultSnapshot::root() const
{
    return d->root;
}

AssetIndex VaultSnapshot::size() const
{
    return AssetIndex(d->assets.size());
}

const Asset &VaultSnapshot::asset(AssetIndex index) const
{
    return d->asset(index);
}

const FolderNode *VaultSnapshot::tree(VaultCategory category) const
{
    return d->scanned ? &d->trees[size_t(category)] : nullptr;
}

const FolderNode *VaultSnapshot::node(const Location &folder) const
{
    const SnapshotFolder *found = d->folder(folder);
    return found ? found->node : nullptr;
}

qint64 VaultSnapshot::totalSize() const
{
    return d->totalSize;
}

std::optional<AssetIndex> VaultSnapshot::find(const Location &url) const
{
    const QByteArrayView path = url.bytes();
    const qsizetype slash = path.lastIndexOf('/');
    if (slash <= 0)
        return std::nullopt;
    const SnapshotFolder *folder =
        d->folder(Location::fromStandardized(QByteArray::fromRawData(path.data(), slash)));
    const std::optional<quint32> position =
        folder ? folder->contents->find(path.sliced(slash + 1)) : std::nullopt;
    return position ? std::optional(folder->indexOf(*position)) : std::nullopt;
}

AssetRange VaultSnapshot::under(const Location &folder) const
{
    const FolderNode *found = node(folder);
    return found ? found->assets : AssetRange{};
}

std::span<const AssetIndex> VaultSnapshot::order(AssetOrder order) const
{
    return d->orders[size_t(order)];
}

std::vector<bool> VaultSnapshot::matching(const QString &needle) const
{
    std::vector<bool> matches(d->assets.size());
    if (needle.isEmpty() || needle.contains(QChar::Null))
        return matches;
    const bool wellFormed = needle.isValidUtf16();
    const QByteArray bytes = needle.toUtf8();
    const quint8 kinds = kindsLabelled(needle);
    for (const SnapshotFolder &folder : d->folders) {
        const quint8 present = folder.contents->kinds;
        if (present == 0)
            continue;
        if ((present & kinds) == present || folder.contents->lowerName.contains(needle)) {
            markAll(folder, matches);
            continue;
        }
        if (present & kinds)
            markKinds(folder, kinds, matches);
        if (wellFormed)
            markName(folder, bytes, matches);
        else
            markNameAsText(folder, needle, matches);
    }
    return matches;
}

} // namespace cratewell
