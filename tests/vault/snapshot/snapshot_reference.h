#pragma once

#include "vault/vault_snapshot.h"

#include <gtest/gtest.h>

namespace cratewell::test {

// Holds a snapshot against a slow and plain reading of what its functions promise: orders, lookups, ranges,
// sums and search.
[[nodiscard]] testing::AssertionResult keepsItsPromises(const VaultSnapshot &snapshot);

// Whether two snapshots show the same, whatever led to them.
[[nodiscard]] testing::AssertionResult areEqual(const VaultSnapshot &a, const VaultSnapshot &b);

} // namespace cratewell::test
