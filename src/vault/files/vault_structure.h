#pragma once

#include "platform/location.h"

namespace cratewell {

class Defaults;

// Makes the category folders of the vault at `root`, the root itself too, and gives each category its
// starter folders once: in a vault that did not exist, or that was never used as one. What cannot be made is
// left out.
void ensureVaultStructure(const Location &root, Defaults &defaults);

} // namespace cratewell
