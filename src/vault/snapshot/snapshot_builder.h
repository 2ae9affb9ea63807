#pragma once

#include "vault/scan/crawl.h"
#include "vault/snapshot/name_collation.h"

namespace cratewell {

// Numbers what a crawl read: fills root, folders, flat list and trees of `data`.
void buildSnapshot(SnapshotData &data, const Location &root, const Crawl &crawl);

} // namespace cratewell
