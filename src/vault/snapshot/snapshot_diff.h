#pragma once

#include "vault/snapshot/snapshot_data.h"

namespace cratewell {

// The asset of `before` at the same place for each asset of `after`, or noAsset.
std::vector<AssetIndex> previousIndices(const SnapshotData &before, const SnapshotData &after);
// Whether the two are the same asset in the same version.
bool isSame(const Asset &a, const Asset &b);

} // namespace cratewell
