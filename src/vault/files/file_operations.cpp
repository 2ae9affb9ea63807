#include "vault/files/file_operations.h"

#include "vault/files/copy_transaction.h"
#include "vault/files/disk.h"
#include "vault/files/import_plan.h"
#include "vault/files/rename.h"
#include "vault/files/unique_names.h"
#include "vault/files/vault_folders.h"
#include "vault/move_rule.h"

#include <cerrno>

namespace cratewell {

using namespace Qt::StringLiterals;

void FileOperations::Outcome::note(const Error &failure, const QString &subject)
{
    if (failure.code == 0)
        error = subject + u": "_s + failure.message;
    else if (!failure.is(ECANCELED))
        error = Error::fromErrno(failure.code, subject).message;
}

bool FileOperations::Outcome::noteMoved(const Result<MoveTransaction::Moved> &moved, const QString &subject)
{
    if (!moved)
        note(moved.error(), subject);
    else if (moved->leftBehind)
        note(*moved->leftBehind, subject);
    return moved.has_value();
}

// What cannot be read now is read before it is used.
void FileOperations::open()
{
    m_open = true;
    if (m_maintenance == StartupMaintenance::Skip) {
        std::ignore = m_trash.load();
        return;
    }
    // What another program is just moving to the trash has its record and still stands at its place.
    const bool othersAtWork = Temporaries::cleanUp(m_root);
    std::ignore = othersAtWork ? m_trash.load() : m_trash.repair();
}

FileOperations::Outcome FileOperations::createFolder(const Location &parent, const QString &name)
{
    Outcome outcome;
    UniqueNames names;
    const Result<Location> made = makeVaultFolders(m_root, parent).and_then([&] {
        return names.claim(parent, bytesFromText(name), UniqueNames::Naming::Folder, &disk::makeFolder);
    });
    if (made)
        outcome.placed.push_back(*made);
    else
        outcome.note(made.error(), name);
    return outcome;
}

FileOperations::Outcome FileOperations::rename(const Location &item, const Location &destination)
{
    Outcome outcome;
    const Result<void> renamed = checkVaultFolder(m_root, item.parent()).and_then([&] {
        return disk::renameWithoutReplacing(item, destination);
    });
    if (renamed)
        outcome.count = 1;
    else
        outcome.note(renamed.error(), destination.name());
    return outcome;
}

// Neither end is reached through a link that leads out of the vault.
Result<void> FileOperations::checkMove(const Location &item, const Location &folder) const
{
    return checkVaultFolder(m_root, folder).and_then([&] { return checkVaultFolder(m_root, item.parent()); });
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
        if (const Result<void> inside = checkMove(item, folder); !inside) {
            outcome.note(inside.error(), item.name());
            continue;
        }
        transaction.add(item, folder, item.nameBytes().toByteArray(),
                        [&, item](const Result<MoveTransaction::Moved> &moved) {
                            if (!outcome.noteMoved(moved, item.name()))
                                return;
                            ++outcome.count;
                            ++progress.filesDone;
                            outcome.placed.push_back(moved->place);
                        });
    }
    transaction.finish();
    return outcome;
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
            std::ignore = makeVaultFolders(m_root, folder);
        } else if (mode == ImportMode::Copy) {
            const Result<Location> copy =
                checkVaultFolder(m_root, folder).and_then([&, from = source, to = folder] {
                    return copies.add(from, to);
                });
            if (copy)
                placed(*copy);
            else
                outcome.note(copy.error(), source.name());
        } else if (const Result<void> inside = checkMove(source, folder); !inside) {
            outcome.note(inside.error(), source.name());
        } else {
            moves.add(source, folder, source.nameBytes().toByteArray(),
                      [&, name = source.name()](const Result<MoveTransaction::Moved> &moved) {
                          if (outcome.noteMoved(moved, name))
                              placed(moved->place);
                      });
        }
    }
    moves.finish();
    // People wipe the card once they read that its files are in the vault.
    if (const Result<void> durable = copies.finish(); !durable) {
        outcome.note(durable.error(), u"Import"_s);
        outcome.count = 0;
    }
    return outcome;
}

} // namespace cratewell
