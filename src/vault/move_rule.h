#pragma once

#include "vault/category.h"

namespace cratewell {

// Which items may be moved into a folder of the vault at `root`. Asks the disk where links lead.
class MoveRule
{
public:
    MoveRule(const Location &root, const Location &folder);

    // Not a category folder, nor what is there already or would go into itself, nor what the category of the
    // folder does not accept.
    bool allows(const Location &item) const;
    // The same without the disk, for what is no category folder: the kind that the item's name suggests, and
    // where it is once its links are followed.
    bool allows(std::optional<AssetKind> kind, const Location &resolved) const;

private:
    const Location m_resolvedRoot;
    const Location m_resolvedFolder;
    const std::optional<VaultCategory> m_category;
};

} // namespace cratewell
