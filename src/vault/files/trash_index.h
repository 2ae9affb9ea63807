#pragma once

#include "vault/trash_item.h"

#include <optional>
#include <vector>

namespace cratewell {

// The vault's folder for deleted items, and the record of what lies in it.
Location trashFolder(const Location &root);
Location trashIndexFile(const Location &root);
// The folder that holds one deleted item, and the item in it.
Location trashSlot(const Location &root, const TrashItem &item);
Location trashedItem(const Location &root, const TrashItem &item);
// A UUID in its usual form.
bool isSlotName(const QString &name);
// Where an item goes whose own place is not known: into the default folder of its kind.
Location defaultHome(const Location &root, const QString &name);

// A compact JSON array, in the order of the list.
QByteArray encodeTrash(const std::vector<TrashItem> &items);

struct DecodedTrash
{
    std::vector<TrashItem> items; // newest first
    bool intact = true;           // every record could be believed
};
// Leaves out records that could lead out of the trash folder or are no records.
DecodedTrash decodeTrash(const QByteArray &json);

} // namespace cratewell
