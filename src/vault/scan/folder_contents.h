#pragma once

#include "vault/asset.h"
#include "vault/snapshot/search_text.h"

#include <memory>
#include <optional>
#include <vector>

namespace cratewell {

struct ChildFolder
{
    Location url;
    quint32 position = 0; // how many of the folder's own assets are listed before it

    friend bool operator==(const ChildFolder &, const ChildFolder &) = default;
};

// What one folder itself holds, in listing order. Knows nothing of its place in a snapshot, so that snapshots
// share it for as long as the folder does not change. Immutable.
struct FolderContents
{
    FolderContents(Location folder, std::vector<Asset> ownAssets, std::vector<ChildFolder> ownChildren);

    Location url;
    std::vector<Asset> assets;
    std::vector<ChildFolder> children;
    qint64 totalSize = 0;
    size_t nameBytes = 0; // of all names together
    QString lowerName;
    quint8 kinds = 0; // one bit for each AssetKind that occurs
    SearchText names;

    QByteArrayView name(size_t position) const;
    QByteArrayView baseName(size_t position) const;
    std::optional<quint32> find(QByteArrayView name) const;

private:
    size_t slotOf(QByteArrayView name) const;

    std::vector<quint32> m_slots; // hashed by name: position + 1, or 0
};

// The name without its extension; an asset's name always has one.
QByteArrayView baseNameOf(QByteArrayView name);
inline quint8 kindBit(AssetKind kind)
{
    return quint8(1u << unsigned(kind));
}

} // namespace cratewell
