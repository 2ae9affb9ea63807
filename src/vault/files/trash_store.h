#pragma once

#include "platform/posix/file_status.h"
#include "vault/trash_item.h"

#include <QSet>
#include <optional>
#include <vector>

namespace cratewell {

// The items in a vault's trash and the index of them on disk. Another program may change the same index: each
// call reads it first when it has changed, and changes what stands there. No link below the root is followed.
// File thread.
class TrashStore
{
public:
    explicit TrashStore(Location root) : m_root(std::move(root)) {}

    // Newest first, as last read or changed.
    const std::vector<TrashItem> &items() const { return m_items; }

    // An item without a record gets one: what was known of it, or one that leads to the default folder of its
    // kind. Writes nothing. Without a trash on disk, and on failure, the items stay as they were.
    [[nodiscard]] Result<void> load();
    // After a program was killed: drops the records of items that never left their place, and writes the
    // index where it was damaged or incomplete. A damaged one is kept beside it.
    [[nodiscard]] Result<void> repair();
    // Makes the trash where there is none. Afterwards all records are in the index, or none.
    [[nodiscard]] Result<void> add(const std::vector<TrashItem> &records);
    // On failure they are gone from the items only, until the index can be written.
    [[nodiscard]] Result<void> remove(const QSet<QString> &ids);

    // An item's own folder in the trash.
    [[nodiscard]] Result<void> makeSlot(const TrashItem &item) const;
    // Fails where the slot is no folder of the trash: ELOOP for a link.
    [[nodiscard]] Result<void> checkSlot(const TrashItem &item) const;
    void removeEmptySlot(const TrashItem &item) const;
    // With everything in it; succeeds when it is gone already.
    [[nodiscard]] Result<void> deleteSlot(const TrashItem &item) const;
    // Whether the record and the slot's own change time both say that the retention is over. `now` in seconds
    // since 2001-01-01 UTC.
    bool hasExpired(const TrashItem &item, double now) const;

private:
    [[nodiscard]] Result<void> load(int folder);
    [[nodiscard]] Result<void> readIndex(int folder);
    void adopt(const QByteArray &slot, const std::vector<TrashItem> &known, int folder);
    [[nodiscard]] Result<void> change(const std::vector<TrashItem> &added, const QSet<QString> &removed);
    [[nodiscard]] Result<void> save(int folder);

    const Location m_root;
    std::vector<TrashItem> m_items;
    std::optional<FileStatus> m_index; // of the file that was read or written last
    bool m_damaged = false;            // what stands in the index's place
    bool m_unsaved = false;            // the items are not what the index says
};

} // namespace cratewell
