#pragma once

#include "vault/snapshot/snapshot_data.h"

#include <functional>

namespace cratewell {

// Fills the sort orders of `data` with two threads. `before` may be null; the orders of what did not change
// since then are taken over and only the rest is sorted in. False when canceled, which is asked by the
// calling thread only.
bool makeOrders(SnapshotData &data, const SnapshotData *before, const std::function<bool()> &canceled);

} // namespace cratewell
