#pragma once

#include "vault/scan/directory_scanner.h"
#include "vault/snapshot/name_collation.h"

namespace cratewell {

// Numbers what a scanner read: fills root, folders, flat list and trees of `data`.
void buildSnapshot(SnapshotData &data, const Location &root, const DirectoryScanner &scanner);

} // namespace cratewell
