#pragma once

#include "state/scope.h"
#include "vault/vault_snapshot.h"

namespace cratewell {

class Prefs;

// The assets the grid shows, in its order: indices into one snapshot.
struct VisibleAssets
{
    std::shared_ptr<const VaultSnapshot> snapshot;
    std::vector<AssetIndex> indices;
    // For each asset of the snapshot its place in `indices`, or -1.
    std::vector<int> rows;

    int count() const { return int(indices.size()); }
    const Asset &at(int row) const { return snapshot->asset(indices[size_t(row)]); }
    // -1 for an asset that is not shown.
    int row(const Location &url) const;
};

// What a scope lists, without sorting or comparing a text: the snapshot's own order is walked and filtered.
// `matching` has one flag per asset of the snapshot; empty lets every asset pass. `prefs` gives the
// favorites and the recent ones, which keep their own order.
VisibleAssets listVisible(std::shared_ptr<const VaultSnapshot> snapshot, const Scope &scope, AssetOrder order,
                          const std::vector<bool> &matching, const Prefs &prefs);

} // namespace cratewell
