#pragma once

#include "state/scope.h"
#include "vault/vault_picture.h"

namespace cratewell {

class Prefs;

// The assets the grid shows, in its order: indices into one picture.
struct VisibleAssets
{
    std::shared_ptr<const VaultPicture> picture;
    std::vector<AssetIndex> indices;
    // For each asset of the picture its place in `indices`, or -1.
    std::vector<int> rows;

    int count() const { return int(indices.size()); }
    const Asset &at(int row) const { return picture->asset(indices[size_t(row)]); }
    // -1 for an asset that is not shown.
    int row(const Location &url) const;
};

// What a scope lists, without sorting or comparing a text: the picture's own order is walked and filtered.
// `matching` has one flag per asset of the picture; empty lets every asset pass. `prefs` gives the favourites
// and the recent ones, which keep their own order.
VisibleAssets listVisible(std::shared_ptr<const VaultPicture> picture, const Scope &scope, AssetOrder order,
                          const std::vector<bool> &matching, const Prefs &prefs);

} // namespace cratewell
