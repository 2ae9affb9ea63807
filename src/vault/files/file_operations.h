#pragma once

#include "platform/error.h"
#include "vault/files/move_transaction.h"
#include "vault/files/operation_progress.h"
#include "vault/files/trash_store.h"
#include "vault/vault.h"

namespace cratewell {

// The disk side of the vault's operations. Killed at any instant, it leaves every file complete at its old
// place or at its new one, and nothing in the trash without its record. Confined to the file thread; knows no
// state of the program but the trash, whose list it owns.
class FileOperations
{
public:
    explicit FileOperations(Location root, StartupMaintenance maintenance = StartupMaintenance::Run)
        : m_root(std::move(root)), m_maintenance(maintenance), m_trash(m_root)
    {
    }

    const Location &root() const { return m_root; }
    // Newest first.
    const std::vector<TrashItem> &trash() const { return m_trash.items(); }

    // Clears up after a program that was killed unless told to skip that, and reads the trash. To be called
    // before anything else.
    void open();
    bool isOpen() const { return m_open; }

    struct Outcome
    {
        int count = 0;
        std::vector<Location> placed;
        std::vector<TrashItem> trashed;
        QString error; // the last one, or empty

        // Keeps an error that `subject` met, unless it is that the user canceled.
        void note(const Error &failure, const QString &subject);
        // Whether the item is at its new place; keeps why something stayed at the old one.
        bool noteMoved(const Result<MoveTransaction::Moved> &moved, const QString &subject);
    };
    // `name` is cleaned. Placed: the new folder.
    Outcome createFolder(const Location &parent, const QString &name);
    // Count 1 when it was renamed.
    Outcome rename(const Location &item, const Location &destination);
    Outcome move(const std::vector<Location> &items, const Location &folder, OperationProgress &progress);
    Outcome trash(const std::vector<Location> &items, OperationProgress &progress);
    Outcome restore(const std::vector<TrashItem> &items, OperationProgress &progress);
    Outcome removeForever(const std::vector<TrashItem> &items, OperationProgress &progress);
    // What has been in the trash for too long at `now`, in seconds since 2001-01-01 UTC.
    void purge(double now, OperationProgress &progress);
    // Placed: in the order of placing.
    Outcome import(const std::vector<Location> &items, const std::optional<Location> &into, ImportMode mode,
                   OperationProgress &progress);

private:
    std::vector<TrashItem> recordsOf(const std::vector<Location> &items, Outcome &outcome) const;
    void moveToSlots(const std::vector<TrashItem> &records, OperationProgress &progress,
                     Outcome &outcome) const;
    std::vector<TrashItem> moveHome(const std::vector<TrashItem> &items, OperationProgress &progress,
                                    Outcome &outcome) const;
    Result<Location> makeHome(const TrashItem &item) const;
    void dropRecords(const QSet<QString> &ids);
    Result<void> checkMove(const Location &item, const Location &folder) const;

    const Location m_root;
    const StartupMaintenance m_maintenance;
    TrashStore m_trash;
    bool m_open = false;
};

} // namespace cratewell
