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

std::vector<bool> membership(const VaultPicture &picture, const LocationSet &places)
{
    std::vector<bool> members(picture.size());
    for (const Location &place : places) {
        if (const auto index = picture.find(place))
            members[*index] = true;
    }
    return members;
}

std::vector<AssetIndex> found(const VaultPicture &picture, const LocationList &places,
                              const std::vector<bool> &matching)
{
    std::vector<AssetIndex> indices;
    for (const Location &place : places) {
        if (const auto index = picture.find(place); index && (matching.empty() || matching[*index]))
            indices.push_back(*index);
    }
    return indices;
}

std::vector<AssetIndex> listed(const VaultPicture &picture, const Scope &scope, AssetOrder order,
                               const std::vector<bool> &matching, const Prefs &prefs)
{
    switch (scope.kind()) {
    case Scope::Kind::All:
        return filtered(picture.order(order), matching, [](AssetIndex) { return true; });
    case Scope::Kind::Folder: {
        const AssetRange range = picture.under(scope.folder());
        return filtered(picture.order(order), matching,
                        [range](AssetIndex index) { return range.contains(index); });
    }
    case Scope::Kind::Favorites: {
        const std::vector<bool> members = membership(picture, prefs.favorites());
        return filtered(picture.order(order), matching,
                        [&members](AssetIndex index) { return members[index]; });
    }
    case Scope::Kind::Recent:
        return found(picture, prefs.recent(), matching);
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
    const auto index = picture ? picture->find(url) : std::nullopt;
    return index ? rows[*index] : -1;
}

VisibleAssets listVisible(std::shared_ptr<const VaultPicture> picture, const Scope &scope, AssetOrder order,
                          const std::vector<bool> &matching, const Prefs &prefs)
{
    VisibleAssets visible{std::move(picture), {}, {}};
    visible.indices = listed(*visible.picture, scope, order, matching, prefs);
    visible.rows.assign(visible.picture->size(), -1);
    for (int row = 0; row < visible.count(); ++row)
        visible.rows[visible.indices[size_t(row)]] = row;
    return visible;
}

} // namespace cratewell
