#pragma once

#include "platform/location.h"
#include "vault/category.h"

#include <QSet>
#include <optional>
#include <vector>

namespace cratewell {

// Files and folders that were dropped: those of the vault are moved, the others are copied in. A category's
// own folder stays where it is and is in neither list.
struct DroppedItems
{
    std::vector<Location> inside;  // as places in the vault
    std::vector<Location> outside; // as they were dropped

    friend bool operator==(const DroppedItems &, const DroppedItems &) = default;
};

// What a drop would do on any folder. Small, unless it holds many folders.
class DropEffects
{
public:
    // Whether a move into `folder` takes anything.
    bool moveInto(const Location &folder, const Location &root) const;
    // Whether anything is copied from outside the vault: assets and folders.
    bool import() const { return m_importsFolder || !m_imported.isEmpty(); }
    // Whether an import into `folder` leaves anything in it; the rest goes to where its type belongs.
    bool importInto(const Location &folder, const Location &root) const;

private:
    friend struct DropJudge;
    struct Moved
    {
        std::optional<AssetKind> kind; // that its name suggests
        Location resolved;
    };
    std::vector<Moved> m_moved; // of the files of one kind in one folder, one stands for all
    QSet<AssetKind> m_imported;
    bool m_importsFolder = false;
};

struct JudgedDrop
{
    DroppedItems items;
    DropEffects effects;
};

// Follows symbolic links on the way to each item, at its end and in `root`. Touches the disk once or twice
// for each item; for any thread.
JudgedDrop judgeDrop(const std::vector<Location> &items, const Location &root);

} // namespace cratewell
