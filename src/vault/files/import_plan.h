#pragma once

#include "vault/category.h"

#include <optional>
#include <vector>

namespace cratewell {

struct OperationProgress;

// What an import will do, in order: folders to make and files to place. Made by looking at the sources only,
// so that the amount of work is known before the first file is touched.
struct ImportPlan
{
    struct Step
    {
        Location source; // nowhere for a folder to be made
        Location folder; // to be made, or to place the file in
    };
    std::vector<Step> steps;

    // Files are assets by their extension; all else is left out. Without `into`, folders and files are filed
    // by type below `root`. What a folder holds that the destination's category does not accept goes to the
    // category that does. Nothing inside the vault is imported along with a folder around it.
    static ImportPlan make(const Location &root, const std::vector<Location> &items,
                           const std::optional<Location> &into, OperationProgress &progress);
};

} // namespace cratewell
