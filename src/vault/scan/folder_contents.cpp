#include "vault/scan/folder_contents.h"

#include <bit>

namespace cratewell {

QByteArrayView baseNameOf(QByteArrayView name)
{
    qsizetype dot = name.size() - 1;
    while (dot > 0 && name[dot] != '.')
        --dot;
    return dot > 0 ? name.first(dot) : name;
}

FolderContents::FolderContents(Location folder, std::vector<Asset> ownAssets,
                               std::vector<ChildFolder> ownChildren)
    : url(std::move(folder)), assets(std::move(ownAssets)), children(std::move(ownChildren)),
      lowerName(url.name().toLower())
{
    for (const Asset &asset : assets)
        nameBytes += size_t(asset.url.bytes().size() - url.bytes().size() - 1);
    names.reserve(assets.size(), nameBytes);
    m_slots.resize(assets.empty() ? 0 : std::bit_ceil(assets.size() + assets.size() / 2 + 1));
    for (size_t i = 0; i < assets.size(); ++i) {
        totalSize += assets[i].size;
        kinds |= kindBit(assets[i].kind);
        names.append(baseName(i));
        m_slots[slotOf(name(i))] = quint32(i + 1);
    }
}

QByteArrayView FolderContents::name(size_t position) const
{
    return QByteArrayView(assets[position].url.bytes()).sliced(url.bytes().size() + 1);
}

QByteArrayView FolderContents::baseName(size_t position) const
{
    return baseNameOf(name(position));
}

// The slot that holds `wanted`, or the free one where it belongs.
size_t FolderContents::slotOf(QByteArrayView wanted) const
{
    const size_t mask = m_slots.size() - 1;
    size_t slot = qHash(wanted) & mask;
    while (m_slots[slot] != 0 && name(m_slots[slot] - 1) != wanted)
        slot = (slot + 1) & mask;
    return slot;
}

std::optional<quint32> FolderContents::find(QByteArrayView wanted) const
{
    if (m_slots.empty())
        return std::nullopt;
    const quint32 found = m_slots[slotOf(wanted)];
    return found == 0 ? std::nullopt : std::optional(found - 1);
}

} // namespace cratewell
