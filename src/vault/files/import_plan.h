#pragma once

#include "platform/error.h"
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
    std::optional<Error> unread; // the last folder that could not be listed; what is in it is left out

    // Files are assets by their extension; all else is left out. Without `into`, folders and files are filed
    // by type below `root`. What a folder holds that the destination's category does not accept goes to the
    // category that does. The vault is never imported into itself, by whatever path a folder around it, or
    // its own, is given.
    static ImportPlan make(const Location &root, const std::vector<Location> &items,
                           const std::optional<Location> &into, OperationProgress &progress);
};

} // namespace cratewell
