#include "vault/files/file_operations.h"

#include "platform/posix/replace_file.h"
#include "vault/files/copy_transaction.h"
#include "vault/files/disk.h"
#include "vault/files/import_plan.h"
#include "vault/files/move_transaction.h"
#include "vault/files/rename.h"
#include "vault/files/unique_names.h"
#include "vault/move_rule.h"

#include <QFile>
#include <QSet>
#include <QUuid>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 largestIndex = qint64{256} << 20; // bytes; more is no index of ours

// Work that the user broke off is no failure.
void note(FileOperations::Outcome &outcome, const Error &error, const QString &subject)
{
    if (error.code == 0)
        outcome.error = subject + u": "_s + error.message;
    else if (!error.is(ECANCELED))
        outcome.error = Error::fromErrno(error.code, subject).message;
}

// Whether the item is at its new place; what stayed at the old one is reported.
bool noteMoved(FileOperations::Outcome &outcome, const Result<MoveTransaction::Moved> &moved,
               const QString &subject)
{
    if (!moved)
        note(outcome, moved.error(), subject);
    else if (moved->leftBehind)
        note(outcome, *moved->leftBehind, subject);
    return moved.has_value();
}

// Nothing when there is no file; a file that cannot be read is an error.
std::optional<QByteArray> readIndex(const Location &place, bool &readable)
{
    QFile file;
    const int descriptor = ::open(place.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    readable = descriptor >= 0 || errno == ENOENT;
    if (descriptor < 0 || !file.open(descriptor, QFile::ReadOnly, QFile::AutoCloseHandle))
        return std::nullopt;
    return file.read(largestIndex);
}

QSet<QString> idsOf(const std::vector<TrashItem> &items)
{
    QSet<QString> ids;
    for (const TrashItem &item : items)
        ids.insert(item.id);
    return ids;
}

} // namespace

void FileOperations::open()
{
    m_open = true;
    Temporaries::cleanUp(m_root);
    bool readable = true;
    const Location index = trashIndexFile(m_root);
    const std::optional<QByteArray> json = readIndex(index, readable);
    DecodedTrash decoded = json ? decodeTrash(*json) : DecodedTrash{};
    if (!decoded.intact || !readable) {
        // Whatever it was, it is kept: the next save makes a new one.
        UniqueNames names;
        names.claim(index.parent(), "index damaged.json", UniqueNames::Naming::File,
                    [&](const Location &to) { return disk::renameWithoutReplacing(index, to); });
    }
    m_trash = std::move(decoded.items);
    // Killed between the record and the move, or between the move back and the record.
    const size_t listed = m_trash.size();
    std::erase_if(m_trash, [this](const TrashItem &item) {
        const bool unmoved = !disk::exists(trashedItem(m_root, item)) && standsAtHome(item);
        if (unmoved)
            disk::removeFolder(trashSlot(m_root, item));
        return unmoved;
    });
    if (m_trash.size() != listed || (json && !decoded.intact))
        saveTrash();
}

FileOperations::Outcome FileOperations::createFolder(const Location &parent, const QString &name)
{
    Outcome outcome;
    UniqueNames names;
    const Result<Location> made = makeFoldersInVault(parent).and_then([&] {
        return names.claim(parent, bytesFromText(name), UniqueNames::Naming::Folder, &disk::makeFolder);
    });
    if (made)
        outcome.placed.push_back(*made);
    else
        note(outcome, made.error(), name);
    return outcome;
}

FileOperations::Outcome FileOperations::rename(const Location &item, const Location &destination)
{
    Outcome outcome;
    const Result<void> renamed = disk::renameWithoutReplacing(item, destination);
    if (renamed)
        outcome.count = 1;
    else
        note(outcome, renamed.error(), destination.name());
    return outcome;
}

FileOperations::Outcome FileOperations::move(const std::vector<Location> &items, const Location &folder,
                                             OperationProgress &progress)
{
    Outcome outcome;
    progress.filesTotal = int(items.size());
    const MoveRule rule(m_root, folder);
    MoveTransaction transaction(m_root, progress);
    for (const Location &item : items) {
        if (progress.canceled)
            break;
        if (!rule.allows(item))
            continue;
        transaction.add(item, folder, item.nameBytes().toByteArray(),
                        [&, item](const Result<MoveTransaction::Moved> &moved) {
                            if (!noteMoved(outcome, moved, item.name()))
                                return;
                            ++outcome.count;
                            ++progress.filesDone;
                            outcome.placed.push_back(moved->place);
                        });
    }
    transaction.finish();
    return outcome;
}

FileOperations::Outcome FileOperations::trash(const std::vector<Location> &items, OperationProgress &progress)
{
    Outcome outcome;
    progress.filesTotal = int(items.size());
    std::vector<TrashItem> records;
    for (const Location &item : items) {
        if (isCategoryRoot(m_root, item) || !disk::exists(item))
            continue;
        records.push_back({QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper(), item.name(),
                           item.text(), secondsNow(), disk::isFolder(item), disk::sizeOf(item)});
    }
    if (records.empty() || progress.canceled)
        return outcome;

    // The records come first: what is in the trash has one at every instant.
    m_trash.insert(m_trash.begin(), records.rbegin(), records.rend());
    if (const Result<void> saved = saveTrash(); !saved)
        note(outcome, saved.error(), u"Trash"_s);
    else
        moveToSlots(records, progress, outcome);
    if (outcome.trashed.size() < records.size()) {
        const QSet<QString> tried = idsOf(records);
        const QSet<QString> done = idsOf(outcome.trashed);
        std::erase_if(m_trash, [&](const TrashItem &item) {
            return tried.contains(item.id) && !done.contains(item.id);
        });
        saveTrash();
    }
    return outcome;
}

void FileOperations::moveToSlots(const std::vector<TrashItem> &records, OperationProgress &progress,
                                 Outcome &outcome) const
{
    MoveTransaction transaction(m_root, progress);
    for (const TrashItem &record : records) {
        if (progress.canceled)
            break;
        const Location original = Location::fromText(record.original);
        const Location slot = trashSlot(m_root, record);
        if (const Result<void> made = disk::makeFolder(slot); !made) {
            note(outcome, made.error(), record.name);
            continue;
        }
        transaction.add(original, slot, bytesFromText(record.name),
                        [&, original, slot, record](const Result<MoveTransaction::Moved> &moved) {
                            // Silent when it went along with a folder that was trashed before it.
                            if (moved || !moved.error().is(ENOENT) || disk::exists(original))
                                noteMoved(outcome, moved, record.name);
                            if (!moved) {
                                disk::removeFolder(slot);
                                return;
                            }
                            outcome.trashed.push_back(record);
                            ++outcome.count;
                            ++progress.filesDone;
                        });
    }
    transaction.finish();
}

// A record may come from anywhere: it does not lead out of the categories.
Location FileOperations::homeOf(const TrashItem &item) const
{
    const Location home = Location::fromText(item.original);
    if (categoryOf(m_root, home) && !isCategoryRoot(m_root, home))
        return home;
    const AssetKind kind = kindOf(bytesFromText(item.name)).value_or(AssetKind::Video);
    return categoryFolder(m_root, defaultCategory(kind)).child(item.name);
}

bool FileOperations::standsAtHome(const TrashItem &item) const
{
    return disk::exists(Location::fromText(item.original));
}

FileOperations::Outcome FileOperations::restore(const std::vector<TrashItem> &items,
                                                OperationProgress &progress)
{
    Outcome outcome;
    progress.filesTotal = int(items.size());
    const QSet<QString> known = idsOf(m_trash);
    std::vector<TrashItem> restored;
    {
        MoveTransaction transaction(m_root, progress);
        for (const TrashItem &item : items) {
            if (progress.canceled)
                break;
            if (!known.contains(item.id))
                continue;
            const Location home = homeOf(item);
            (void)makeFoldersInVault(home.parent());
            transaction.add(trashedItem(m_root, item), home.parent(), home.nameBytes().toByteArray(),
                            [&, item](const Result<MoveTransaction::Moved> &moved) {
                                if (!noteMoved(outcome, moved, item.name))
                                    return;
                                // What stayed in the slot keeps its record.
                                if (!moved->leftBehind)
                                    restored.push_back(item);
                                outcome.placed.push_back(moved->place);
                                ++progress.filesDone;
                            });
        }
        transaction.finish();
    }
    outcome.count = int(restored.size());
    for (const TrashItem &item : restored)
        disk::removeFolder(trashSlot(m_root, item));
    const QSet<QString> gone = idsOf(restored);
    std::erase_if(m_trash, [&](const TrashItem &item) { return gone.contains(item.id); });
    if (!gone.isEmpty())
        saveTrash();
    return outcome;
}

void FileOperations::removeForever(const std::vector<TrashItem> &items, OperationProgress &progress)
{
    progress.filesTotal = int(items.size());
    const QSet<QString> known = idsOf(m_trash);
    QSet<QString> gone;
    for (const TrashItem &item : items) {
        if (progress.canceled)
            break;
        if (!known.contains(item.id))
            continue;
        disk::remove(trashSlot(m_root, item));
        // What could not be removed stays listed, so that it can be tried again.
        if (!disk::exists(trashSlot(m_root, item)))
            gone.insert(item.id);
        ++progress.filesDone;
    }
    std::erase_if(m_trash, [&](const TrashItem &item) { return gone.contains(item.id); });
    saveTrash();
}

bool FileOperations::purge(double cutoff, OperationProgress &progress)
{
    std::vector<TrashItem> expired;
    std::ranges::copy_if(m_trash, std::back_inserter(expired),
                         [cutoff](const TrashItem &item) { return item.deletedAt < cutoff; });
    if (!expired.empty())
        removeForever(expired, progress);
    return !expired.empty();
}

FileOperations::Outcome FileOperations::import(const std::vector<Location> &items,
                                               const std::optional<Location> &into, ImportMode mode,
                                               OperationProgress &progress)
{
    Outcome outcome;
    const ImportPlan plan = ImportPlan::make(m_root, items, into, progress);
    if (plan.unread)
        outcome.error = plan.unread->message;
    CopyTransaction copies(m_root, progress);
    MoveTransaction moves(m_root, progress);
    const auto placed = [&](const Location &place) {
        ++outcome.count;
        ++progress.filesDone;
        outcome.placed.push_back(place);
    };
    for (const auto &[source, folder] : plan.steps) {
        if (progress.canceled)
            break;
        if (source.isEmpty()) {
            // What is to lie in a folder that cannot be made fails by itself.
            (void)makeFoldersInVault(folder);
        } else if (mode == ImportMode::Copy) {
            if (const Result<Location> copy = copies.add(source, folder))
                placed(*copy);
            else
                note(outcome, copy.error(), source.name());
        } else {
            moves.add(source, folder, source.nameBytes().toByteArray(),
                      [&, name = source.name()](const Result<MoveTransaction::Moved> &moved) {
                          if (noteMoved(outcome, moved, name))
                              placed(moved->place);
                      });
        }
    }
    moves.finish();
    // People wipe the card once they read that its files are in the vault.
    if (const Result<void> durable = copies.finish(); !durable) {
        note(outcome, durable.error(), u"Import"_s);
        outcome.count = 0;
    }
    return outcome;
}

Result<void> FileOperations::saveTrash() const
{
    if (const Result<void> made = disk::makeFolder(trashFolder(m_root)); !made && !made.error().is(EEXIST))
        return made;
    return replaceAtomically(trashIndexFile(m_root), encodeTrash(m_trash), {.flush = Flush::Yes});
}

// A vault that has vanished is not made anew below the place where it was.
Result<void> FileOperations::makeFoldersInVault(const Location &folder) const
{
    if (folder.isInside(m_root) && !disk::exists(m_root))
        return systemFailure(ENOENT);
    return disk::makeFolders(folder);
}

} // namespace cratewell
