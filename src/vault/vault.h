#pragma once

#include "vault/file_progress.h"
#include "vault/startup_maintenance.h"
#include "vault/trash_item.h"
#include "vault/vault_snapshot.h"

#include <QObject>
#include <QSet>

#include <functional>

class QTimer;

namespace cratewell {

class Defaults;
class FileEvents;

// A folder that items can be moved into, as the move menu lists it.
struct FolderChoice
{
    Location url;
    int depth = 0; // 0 for a category's own folder
    VaultCategory category = VaultCategory::Overlays;

    friend bool operator==(const FolderChoice &, const FolderChoice &) = default;
};

// Whether an import leaves its sources where they are.
enum class ImportMode { Copy, Move };

// The library on disk: makes its folders, changes files, and publishes snapshots that follow the disk. Lives
// on the main thread and emits there; scans and changes of files run on threads of their own. Only changes of
// files report failures; folders that cannot be made or listed show as empty. Owned by Application.
class Vault : public QObject
{
    Q_OBJECT
    Q_PROPERTY(cratewell::Location root READ root NOTIFY rootChanged FINAL)
    Q_PROPERTY(QString lastError READ lastError NOTIFY lastErrorChanged FINAL)
    Q_PROPERTY(qint64 totalSize READ totalSize NOTIFY rescanned FINAL)
public:
    Vault(Location root, Defaults &defaults, std::unique_ptr<FileEvents> events);
    ~Vault() override;

    // Makes the folders, opens the trash, scans and follows the disk. Called once at launch; changeRoot calls
    // it again. Without maintenance nothing is ever deleted that nobody asked for.
    void start(StartupMaintenance maintenance = StartupMaintenance::Run);
    // Leaves the old root as it is. Emits rootChanged, then opened.
    void changeRoot(const Location &root);
    // Returns at once; rescanned follows if anything has changed. At most one scan runs and one waits. A
    // result is dropped only when the root has changed meanwhile. A scan that could not read everything is
    // repeated after a second, then less and less often.
    void rescan();

    const Location &root() const;
    // Of the last finished scan of this or, until then, an earlier root. Never null; empty before the first.
    const std::shared_ptr<const VaultSnapshot> &snapshot() const;
    // Whether it is of this root.
    bool isScanned() const;
    // Of the last operation on files that failed; lastErrorChanged reports each one, an equal one too.
    QString lastError() const;
    qint64 totalSize() const; // bytes, of all assets in the snapshot

    Location categoryUrl(VaultCategory category) const;
    bool isCategoryRoot(const Location &place) const;

    // Changes of files. Each call returns at once; the disk work is done in the order of the calls on a
    // thread of its own. When it is done, its effects follow on the main thread: lastError with the system's
    // words if something failed, the signals, a rescan, the toast. Effects of work on a former root are
    // dropped.

    // A taken name gets a number. `done` is called with the new folder, or with nothing when there is none:
    // at once for an empty name.
    using FolderCreated = std::function<void(const std::optional<Location> &)>;
    void createFolder(const QString &name, const Location &parent, FolderCreated done = {});
    // The name replaces the whole last path component. Refuses category folders and empty names;
    // nothing happens when it is the item's name already.
    void rename(const Location &item, const QString &name);
    // Takes what MoveRule allows and leaves the rest where it is.
    void move(const std::vector<Location> &items, const Location &folder);
    // The folders of the snapshot whose category accepts all of these kinds, depth first; without kinds all.
    std::vector<FolderChoice> flatFolders(const std::optional<QSet<AssetKind>> &kinds = {}) const;

    // Newest first.
    const std::vector<TrashItem> &trashItems() const;
    void moveToTrash(const std::vector<Location> &items);
    void restore(const std::vector<TrashItem> &items);
    void deleteForever(const std::vector<TrashItem> &items);
    // Deletes what has lain in the trash for trashRetentionDays; done at the start and every hour, too.
    void purgeExpired();

    // Without a folder, files are filed by their type. Folders keep their structure.
    void importItems(const std::vector<Location> &items, const std::optional<Location> &into,
                     ImportMode mode);
    // Where the last imports put their files, newest first, at most 40.
    const std::vector<Location> &recentImports() const;
    FileProgress &progress() const;
    // Cancels the work on files and waits for its end. Later calls do nothing.
    void drain();

Q_SIGNALS:
    // Before anything is done at the new root.
    void rootChanged(const cratewell::Location &root);
    // After changeRoot has started on the new root.
    void opened();
    // A newer snapshot is published.
    void rescanned(const cratewell::SnapshotDiff &diff);
    void lastErrorChanged();
    void itemRenamed(const cratewell::Location &from, const cratewell::Location &to);
    // Something was moved, or tried to be.
    void itemsMoved();
    // With the items as they now lie in the trash.
    void itemsTrashed(const std::vector<cratewell::TrashItem> &items);
    void trashItemsChanged();
    void recentImportsChanged();
    // An operation's report; `trashed` is what it has put in the trash.
    void toast(const QString &text, bool ok, const std::vector<cratewell::TrashItem> &trashed = {});

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace cratewell
