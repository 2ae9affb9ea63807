#include "vault/files/disk.h"
#include "vault/files/file_operations.h"
#include "vault/files/trash_index.h"
#include "vault/files/vault_folders.h"

#include <QUuid>

#include <algorithm>
#include <cerrno>

namespace cratewell {

namespace {

QSet<QString> idsOf(const std::vector<TrashItem> &items)
{
    QSet<QString> ids;
    for (const TrashItem &item : items)
        ids.insert(item.id);
    return ids;
}

std::vector<TrashItem> listedOf(const std::vector<TrashItem> &items, const std::vector<TrashItem> &list)
{
    const QSet<QString> ids = idsOf(list);
    std::vector<TrashItem> listed;
    std::ranges::copy_if(items, std::back_inserter(listed),
                         [&](const TrashItem &item) { return ids.contains(item.id); });
    return listed;
}

} // namespace

FileOperations::Outcome FileOperations::trash(const std::vector<Location> &items, OperationProgress &progress)
{
    Outcome outcome;
    progress.filesTotal = int(items.size());
    const std::vector<TrashItem> records = recordsOf(items, outcome);
    if (records.empty() || progress.canceled)
        return outcome;
    // The records come first: what is in the trash has one at every instant.
    if (const Result<void> added = m_trash.add(records); !added) {
        outcome.note(added.error(), trashFolder(m_root).name());
        return outcome;
    }
    moveToSlots(records, progress, outcome);
    const QSet<QString> unmoved = idsOf(records) - idsOf(outcome.trashed);
    if (!unmoved.isEmpty())
        dropRecords(unmoved);
    return outcome;
}

std::vector<TrashItem> FileOperations::recordsOf(const std::vector<Location> &items, Outcome &outcome) const
{
    std::vector<TrashItem> records;
    for (const Location &item : items) {
        if (isCategoryRoot(m_root, item) || !disk::exists(item))
            continue;
        if (const Result<void> inside = checkVaultFolder(m_root, item.parent()); !inside)
            outcome.note(inside.error(), item.name());
        else
            records.push_back({QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper(), item.name(),
                               item.text(), secondsNow(), disk::isFolder(item), disk::sizeOf(item)});
    }
    return records;
}

void FileOperations::moveToSlots(const std::vector<TrashItem> &records, OperationProgress &progress,
                                 Outcome &outcome) const
{
    MoveTransaction transaction(m_root, progress);
    for (const TrashItem &record : records) {
        if (progress.canceled)
            break;
        if (const Result<void> made = m_trash.makeSlot(record); !made) {
            outcome.note(made.error(), record.name);
            continue;
        }
        const Location original = Location::fromText(record.original);
        transaction.add(original, trashSlot(m_root, record), bytesFromText(record.name),
                        [&, original, record](const Result<MoveTransaction::Moved> &moved) {
                            // Silent when it went along with a folder that was trashed before it.
                            if (moved || !moved.error().is(ENOENT) || disk::exists(original))
                                outcome.noteMoved(moved, record.name);
                            if (!moved)
                                return m_trash.removeEmptySlot(record);
                            outcome.trashed.push_back(record);
                            ++outcome.count;
                            ++progress.filesDone;
                        });
    }
    transaction.finish();
}

FileOperations::Outcome FileOperations::restore(const std::vector<TrashItem> &items,
                                                OperationProgress &progress)
{
    Outcome outcome;
    progress.filesTotal = int(items.size());
    if (const Result<void> loaded = m_trash.load(); !loaded) {
        outcome.note(loaded.error(), trashFolder(m_root).name());
        return outcome;
    }
    const std::vector<TrashItem> restored = moveHome(listedOf(items, m_trash.items()), progress, outcome);
    outcome.count = int(restored.size());
    for (const TrashItem &item : restored)
        m_trash.removeEmptySlot(item);
    if (!restored.empty())
        dropRecords(idsOf(restored));
    return outcome;
}

std::vector<TrashItem> FileOperations::moveHome(const std::vector<TrashItem> &items,
                                                OperationProgress &progress, Outcome &outcome) const
{
    std::vector<TrashItem> restored;
    MoveTransaction transaction(m_root, progress);
    for (const TrashItem &item : items) {
        if (progress.canceled)
            break;
        const Result<Location> home = m_trash.checkSlot(item).and_then([&] { return makeHome(item); });
        if (!home) {
            outcome.note(home.error(), item.name);
            continue;
        }
        transaction.add(trashedItem(m_root, item), home->parent(), home->nameBytes().toByteArray(),
                        [&, item](const Result<MoveTransaction::Moved> &moved) {
                            if (!outcome.noteMoved(moved, item.name))
                                return;
                            // What stayed in the slot keeps its record.
                            if (!moved->leftBehind)
                                restored.push_back(item);
                            outcome.placed.push_back(moved->place);
                            ++progress.filesDone;
                        });
    }
    transaction.finish();
    return restored;
}

// With the folder that holds it. A record may come from anywhere: it does not lead out of the categories, be
// it through a link.
Result<Location> FileOperations::makeHome(const TrashItem &item) const
{
    const Location original = Location::fromText(item.original);
    if (categoryOf(m_root, original) && !isCategoryRoot(m_root, original)) {
        const Result<void> made = makeVaultFolders(m_root, original.parent());
        if (made)
            return original;
        if (!made.error().is(ELOOP))
            return tl::unexpected(made.error());
    }
    const Location fallback = defaultHome(m_root, item.name);
    return makeVaultFolders(m_root, fallback.parent()).map([&] { return fallback; });
}

FileOperations::Outcome FileOperations::removeForever(const std::vector<TrashItem> &items,
                                                      OperationProgress &progress)
{
    Outcome outcome;
    progress.filesTotal = int(items.size());
    QSet<QString> gone;
    for (const TrashItem &item : listedOf(items, m_trash.items())) {
        if (progress.canceled)
            break;
        // What could not be removed stays listed, so that it can be tried again.
        if (const Result<void> deleted = m_trash.deleteSlot(item))
            gone.insert(item.id);
        else
            outcome.note(deleted.error(), item.name);
        ++progress.filesDone;
    }
    outcome.count = int(gone.size());
    if (!gone.isEmpty())
        dropRecords(gone);
    return outcome;
}

// A record that cannot be dropped now goes at the next start, or when its item is deleted again.
void FileOperations::dropRecords(const QSet<QString> &ids)
{
    std::ignore = m_trash.remove(ids);
}

void FileOperations::purge(double now, OperationProgress &progress)
{
    if (!m_trash.load())
        return;
    std::vector<TrashItem> expired;
    std::ranges::copy_if(m_trash.items(), std::back_inserter(expired),
                         [&](const TrashItem &item) { return m_trash.hasExpired(item, now); });
    // What cannot be deleted now is tried again within the hour; nobody asked for it.
    if (!expired.empty())
        std::ignore = removeForever(expired, progress);
}

} // namespace cratewell
