#pragma once

#include "vault/vault_picture.h"

#include <gtest/gtest.h>

namespace cratewell::test {

// Holds a picture against a slow and plain reading of what its functions promise: orders, lookups, ranges,
// sums and search.
[[nodiscard]] testing::AssertionResult keepsItsPromises(const VaultPicture &picture);

// Whether two pictures show the same, whatever led to them.
[[nodiscard]] testing::AssertionResult areEqual(const VaultPicture &a, const VaultPicture &b);

std::vector<QString> namesIn(const VaultPicture &picture, std::span<const AssetIndex> indices);

} // namespace cratewell::test
