#pragma once

#include "platform/file_events.h"
#include "vault/files/file_operations.h"
#include "vault/files/file_queue.h"
#include "vault/scan/scan_worker.h"
#include "vault/vault.h"

#include <QTimer>

namespace cratewell {

struct Vault::Private
{
    Private(Vault &vault, Location firstRoot, Defaults &store, std::unique_ptr<FileEvents> fileEvents);

    void startScan();
    void takeResult();
    void retryLater();
    void forgetRetry();
    void follow();

    // What an operation does on the disk, and what follows on the main thread from what came out.
    using DiskPart = std::function<FileOperations::Outcome(FileOperations &, OperationProgress &)>;
    using MainPart = std::function<void(const FileOperations::Outcome &)>;
    // The failure is reported first, the list of the trash second, then `after` is called; none of it when
    // the root has changed meanwhile.
    void change(const QString &title, DiskPart disk, MainPart after, const Location &destination = {});
    void openTrash(StartupMaintenance maintenance);
    void reportFailure(const QString &error);

    static constexpr std::chrono::seconds firstRetry{1};

    Vault &q;
    Location root;
    Defaults &defaults;
    std::unique_ptr<FileEvents> events;
    std::shared_ptr<const VaultSnapshot> snapshot = std::make_shared<VaultSnapshot>();
    QString lastError;
    QTimer coalescing;
    QTimer retrying; // after a scan that could not read everything
    std::chrono::seconds retryDelay = firstRetry;
    QTimer purging;
    bool scanning = false;
    bool waiting = false;
    bool rootChanged = false; // since the scan under way was started
    bool published = false;   // a snapshot of this root
    bool following = false;   // this root
    FileEvents::Time scanStarted;
    std::vector<TrashItem> trash;
    std::vector<Location> recentImports;
    FileProgress progress;
    // The file thread's own, one for each root.
    std::shared_ptr<FileOperations> files = std::make_shared<FileOperations>(root);
    ScanWorker worker; // their threads end before the rest goes
    FileQueue queue{progress};
};

} // namespace cratewell
