#include "state/internal/asset_selection.h"

#include <algorithm>

namespace cratewell {

AssetSelection::AssetSelection(std::shared_ptr<const VaultSnapshot> snapshot)
    : m_snapshot(std::move(snapshot)), m_flags(m_snapshot->size())
{
}

void AssetSelection::follow(const SnapshotDiff &diff)
{
    for (const AssetIndex index : diff.removed) {
        if (m_flags[index])
            m_outside.insert(m_snapshot->asset(index).url);
    }

    m_snapshot = diff.after;
    const std::vector<bool> before = std::exchange(m_flags, std::vector<bool>(m_snapshot->size()));
    m_count = 0;
    for (AssetIndex index = 0; index < m_snapshot->size(); ++index) {
        const AssetIndex previous = diff.previous[index];
        const bool selected = previous == noAsset
                                  ? !m_outside.isEmpty() && m_outside.remove(m_snapshot->asset(index).url)
                                  : before[previous];
        if (selected)
            set(index, true);
    }
}

QSet<Location> AssetSelection::places() const
{
    QSet<Location> places = m_outside;
    places.reserve(count());
    for (AssetIndex index = 0; index < m_flags.size(); ++index) {
        if (m_flags[index])
            places.insert(m_snapshot->asset(index).url);
    }
    return places;
}

bool AssetSelection::holdsExactly(const QSet<Location> &places) const
{
    return places.size() == count() &&
           std::all_of(places.begin(), places.end(), [this](const Location &place) {
               const auto index = m_snapshot->find(place);
               return index ? m_flags[*index] : m_outside.contains(place);
           });
}

void AssetSelection::clear()
{
    m_flags.assign(m_flags.size(), false);
    m_count = 0;
    m_outside.clear();
}

void AssetSelection::insert(const Location &place)
{
    if (const auto index = m_snapshot->find(place))
        insert(*index);
    else
        m_outside.insert(place);
}

void AssetSelection::toggle(const Location &place)
{
    if (const auto index = m_snapshot->find(place))
        toggle(*index);
    else if (!m_outside.remove(place))
        m_outside.insert(place);
}

void AssetSelection::set(AssetIndex index, bool selected)
{
    m_count += int(selected) - int(m_flags[index]);
    m_flags[index] = selected;
}

} // namespace cratewell
