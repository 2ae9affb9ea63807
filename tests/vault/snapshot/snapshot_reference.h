#pragma once

#include "vault/vault_snapshot.h"

namespace cratewell::test {

// Holds a snapshot against a slow and plain reading of what its functions promise: orders, lookups, ranges,
// sums and search.
void expectPromisesKept(const VaultSnapshot &snapshot);
// That two snapshots show the same, whatever led to them.
void expectEqual(const VaultSnapshot &a, const VaultSnapshot &b);
void expectLeadsFromBeforeToAfter(const SnapshotDiff &diff);

} // namespace cratewell::test
