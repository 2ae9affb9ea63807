#include "vault/files/file_operations.h"

#include "vault/files/disk.h"
#include "vault/files/import_plan.h"
#include "vault/files/move_transaction.h"
#include "vault/files/unique_names.h"
#include "vault/files/vault_folders.h"
#include "vault/move_rule.h"

#include <cerrno>

namespace cratewell {

namespace {

Result<void> resultOf(int error, const QString &subject)
{
    return error ? systemFailure(error, subject) : Result<void>();
}

} // namespace

void FileOperations::Outcome::note(const Result<void> &result)
{
    if (!result && !result.error().is(ECANCELED))
        error = result.error().message;
}

// What cannot be read now is read before it is used.
void FileOperations::open()
{
    m_open = true;
    if (m_maintenance == StartupMaintenance::Skip) {
        std::ignore = m_trash.load();
        return;
    }
    Temporaries::cleanUp(m_root);
    std::ignore = m_trash.repair();
}

FileOperations::Outcome FileOperations::createFolder(const Location &parent, const QString &name)
{
    Outcome outcome;
    UniqueNames names;
    Location made;
    const Result<void> done = makeVaultFolders(m_root, parent).and_then([&] {
        return resultOf(
            names.claim(parent, bytesFromText(name), UniqueNames::Naming::Folder, made, &disk::makeFolder),
            name);
    });
    outcome.note(done);
    if (done)
        outcome.placed.push_back(made);
    return outcome;
}

FileOperations::Outcome FileOperations::rename(const Location &item, const Location &destination)
{
    Outcome outcome;
    const Result<void> done = checkVaultFolder(m_root, item.parent()).and_then([&] {
        return resultOf(disk::renameWithoutReplacing(item, destination), destination.name());
    });
    outcome.note(done);
    outcome.count = done ? 1 : 0;
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
            outcome.note(inside);
            continue;
        }
        transaction.add(item, folder, item.nameBytes().toByteArray(),
                        [&, item](int error, const Location &place) {
                            if (error)
                                return outcome.note(systemFailure(error, item.name()));
                            ++outcome.count;
                            ++progress.filesDone;
                            outcome.placed.push_back(place);
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
    Temporaries temporaries(m_root);
    UniqueNames names;
    MoveTransaction transaction(m_root, progress);
    const auto placed = [&](int error, const Location &source, const Location &place) {
        if (error)
            return outcome.note(systemFailure(error, source.name()));
        ++outcome.count;
        ++progress.filesDone;
        outcome.placed.push_back(place);
    };
    const auto copy = [&](const Location &source, const Location &folder) {
        Location part;
        Location place;
        int error = temporaries.name(folder, part);
        if (!error)
            error = disk::copyFile(source, part, progress);
        if (!error)
            error = names.claim(folder, source.nameBytes().toByteArray(), UniqueNames::Naming::File, place,
                                [&](const Location &to) { return disk::renameWithoutReplacing(part, to); });
        if (error)
            disk::remove(part);
        placed(error, source, place);
    };
    for (const ImportPlan::Step &step : plan.steps) {
        if (progress.canceled)
            break;
        if (step.source.isEmpty()) {
            // Each file that would go there reports it.
            std::ignore = makeVaultFolders(m_root, step.folder);
            continue;
        }
        if (const Result<void> inside = mode == ImportMode::Copy ? checkVaultFolder(m_root, step.folder)
                                                                 : checkMove(step.source, step.folder);
            !inside)
            outcome.note(inside);
        else if (mode == ImportMode::Copy)
            copy(step.source, step.folder);
        else
            transaction.add(step.source, step.folder, step.source.nameBytes().toByteArray(),
                            [&, source = step.source](int error, const Location &place) {
                                placed(error, source, place);
                            });
    }
    transaction.finish();
    return outcome;
}

} // namespace cratewell
