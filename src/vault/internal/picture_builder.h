#pragma once

#include "vault/internal/crawl.h"
#include "vault/internal/name_collation.h"

namespace cratewell {

// Numbers what a crawl read: fills root, folders, flat list and trees of `data`.
void buildPicture(PictureData &data, const Location &root, const Crawl &crawl);

} // namespace cratewell
