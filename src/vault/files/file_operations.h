#pragma once

#include "platform/error.h"
#include "vault/files/operation_progress.h"
#include "vault/files/trash_index.h"
#include "vault/vault.h"

namespace cratewell {

// The disk side of the vault's operations. Killed at any instant, it leaves every file complete at its old
// place or at its new one, and nothing in the trash without its record. Confined to the file thread; knows no
// state of the program but the trash, whose list it owns.
class FileOperations
{
public:
    explicit FileOperations(Location root) : m_root(std::move(root)) {}

    const Location &root() const { return m_root; }
    // Newest first.
    const std::vector<TrashItem> &trash() const { return m_trash; }

    // Clears up after a program that was killed, and reads the trash. To be called before anything else.
    void open();
    bool isOpen() const { return m_open; }

    struct Outcome
    {
        int count = 0;
        std::vector<Location> placed;
        std::vector<TrashItem> trashed;
        QString error; // the last one, or empty
    };
    // `name` is cleaned. Placed: the new folder.
    Outcome createFolder(const Location &parent, const QString &name);
    // Count 1 when it was renamed.
    Outcome rename(const Location &item, const Location &destination);
    Outcome move(const std::vector<Location> &items, const Location &folder, OperationProgress &progress);
    Outcome trash(const std::vector<Location> &items, OperationProgress &progress);
    Outcome restore(const std::vector<TrashItem> &items, OperationProgress &progress);
    void removeForever(const std::vector<TrashItem> &items, OperationProgress &progress);
    // What was deleted before `cutoff`, in seconds since 2001-01-01 UTC. False when there was nothing.
    bool purge(double cutoff, OperationProgress &progress);
    // Placed: in the order of placing.
    Outcome import(const std::vector<Location> &items, const std::optional<Location> &into, ImportMode mode,
                   OperationProgress &progress);

private:
    void moveToSlots(const std::vector<TrashItem> &records, OperationProgress &progress,
                     Outcome &outcome) const;
    Location homeOf(const TrashItem &item) const;
    bool standsAtHome(const TrashItem &item) const;
    Result<void> saveTrash() const;
    Result<void> makeFoldersInVault(const Location &folder) const;

    const Location m_root;
    std::vector<TrashItem> m_trash;
    bool m_open = false;
};

} // namespace cratewell
