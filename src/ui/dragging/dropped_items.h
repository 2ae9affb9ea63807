#pragma once

#include "platform/location.h"
#include "vault/category.h"

#include <limits>
#include <vector>

namespace cratewell {

// Files and folders that were dropped on a folder: those of the vault are moved, the others are copied in.
struct DroppedItems
{
    std::vector<Location> inside;  // as places in the vault
    std::vector<Location> outside; // as they were dropped

    friend bool operator==(const DroppedItems &, const DroppedItems &) = default;
};

// Symbolic links on the way to an item, at its end and in `root` are followed. Touches the disk; looks at the
// first `most` items only.
DroppedItems splitDropped(const std::vector<Location> &items, const Location &root,
                          size_t most = std::numeric_limits<size_t>::max());

// Whether a move into `folder` takes any of these places of the vault.
bool movesAny(const std::vector<Location> &items, const Location &folder, const Location &root);
// Whether an import takes any of these: assets and folders. Touches the disk.
bool importsAny(const std::vector<Location> &items);
// Whether an import into `folder` leaves any of these in it; the others go to where their type belongs.
// Touches the disk.
bool landsIn(const std::vector<Location> &items, const Location &folder, const Location &root);

} // namespace cratewell
