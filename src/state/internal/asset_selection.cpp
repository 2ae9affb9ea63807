#include "state/internal/asset_selection.h"

#include <algorithm>

namespace cratewell {

AssetSelection::AssetSelection(std::shared_ptr<const VaultPicture> picture)
    : m_picture(std::move(picture)), m_flags(m_picture->size())
{
}

void AssetSelection::follow(const VaultChanges &changes)
{
    for (const AssetIndex index : changes.removed) {
        if (m_flags[index])
            m_outside.insert(m_picture->asset(index).url);
    }

    m_picture = changes.after;
    const std::vector<bool> before = std::exchange(m_flags, std::vector<bool>(m_picture->size()));
    m_count = 0;
    for (AssetIndex index = 0; index < m_picture->size(); ++index) {
        const AssetIndex previous = changes.previous[index];
        const bool selected = previous == noAsset
                                  ? !m_outside.isEmpty() && m_outside.remove(m_picture->asset(index).url)
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
            places.insert(m_picture->asset(index).url);
    }
    return places;
}

bool AssetSelection::holdsExactly(const QSet<Location> &places) const
{
    return places.size() == count() &&
           std::all_of(places.begin(), places.end(), [this](const Location &place) {
               const auto index = m_picture->find(place);
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
    if (const auto index = m_picture->find(place))
        insert(*index);
    else
        m_outside.insert(place);
}

void AssetSelection::toggle(const Location &place)
{
    if (const auto index = m_picture->find(place))
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
