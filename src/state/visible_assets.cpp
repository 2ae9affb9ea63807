#include "state/visible_assets.h"

#include "state/prefs.h"

namespace cratewell {

namespace {

template<typename Passes>
std::vector<AssetIndex> filtered(std::span<const AssetIndex> order, const std::vector<bool> &matching,
                                 const Passes &passes)
{
    std::vector<AssetIndex> indices;
    indices.reserve(order.size());
    for (const AssetIndex index : order) {
        if (passes(index) && (matching.empty() || matching[index]))
            indices.push_back(index);
    }
    return indices;
}

std::vector<bool> membership(const VaultSnapshot &snapshot, const LocationSet &places)
{
    std::vector<bool> members(snapshot.size());
    for (const Location &place : places) {
        if (const auto index = snapshot.find(place))
            members[*index] = true;
    }
    return members;
}

std::vector<AssetIndex> found(const VaultSnapshot &snapshot, const LocationList &places,
                              const std::vector<bool> &matching)
{
    std::vector<AssetIndex> indices;
    for (const Location &place : places) {
        if (const auto index = snapshot.find(place); index && (matching.empty() || matching[*index]))
            indices.push_back(*index);
    }
    return indices;
}

std::vector<AssetIndex> listed(const VaultSnapshot &snapshot, const Scope &scope, AssetOrder order,
                               const std::vector<bool> &matching, const Prefs &prefs)
{
    switch (scope.kind()) {
    case Scope::Kind::All:
        return filtered(snapshot.order(order), matching, [](AssetIndex) { return true; });
    case Scope::Kind::Folder: {
        const AssetRange range = snapshot.under(scope.folder());
        return filtered(snapshot.order(order), matching,
                        [range](AssetIndex index) { return range.contains(index); });
    }
    case Scope::Kind::Favorites: {
        const std::vector<bool> members = membership(snapshot, prefs.favorites());
        return filtered(snapshot.order(order), matching,
                        [&members](AssetIndex index) { return members[index]; });
    }
    case Scope::Kind::Recent:
        return found(snapshot, prefs.recent(), matching);
    case Scope::Kind::Plugin:
    case Scope::Kind::Importer:
    case Scope::Kind::Trash:
        break;
    }
    return {};
}

} // namespace

int VisibleAssets::row(const Location &url) const
{
    const auto index = snapshot ? snapshot->find(url) : std::nullopt;
    return index ? rows[*index] : -1;
}

VisibleAssets listVisible(std::shared_ptr<const VaultSnapshot> snapshot, const Scope &scope, AssetOrder order,
                          const std::vector<bool> &matching, const Prefs &prefs)
{
    VisibleAssets visible{std::move(snapshot), {}, {}};
    visible.indices = listed(*visible.snapshot, scope, order, matching, prefs);
    visible.rows.assign(visible.snapshot->size(), -1);
    for (int row = 0; row < visible.count(); ++row)
        visible.rows[visible.indices[size_t(row)]] = row;
    return visible;
}

} // namespace cratewell
