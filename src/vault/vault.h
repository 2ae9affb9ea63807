#pragma once

#include "vault/file_progress.h"
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

// The library on disk: makes its folders, keeps a snapshot of it that follows the disk. Main thread; scans
// run on a worker. Failures to create, list or read leave empty or partial results. Owned by Application.
class Vault : public QObject
{
    Q_OBJECT
    Q_PROPERTY(cratewell::Location root READ root NOTIFY rootChanged FINAL)
    Q_PROPERTY(QString lastError READ lastError NOTIFY lastErrorChanged FINAL)
    Q_PROPERTY(qint64 totalSize READ totalSize NOTIFY rescanned FINAL)
public:
    Vault(Location root, Defaults &defaults, std::unique_ptr<FileEvents> events);
    ~Vault() override;

    // Makes the structure, scans and follows the disk. Called once at launch; changeRoot calls it again.
    void start();
    void changeRoot(const Location &root);
    // At most one scan runs and one waits. A result is dropped only when the root changed meanwhile.
    void rescan();

    const Location &root() const;
    // Never null; empty before the first scan.
    const std::shared_ptr<const VaultSnapshot> &snapshot() const;
    QString lastError() const;
    Q_INVOKABLE void clearLastError();
    qint64 totalSize() const;

    Location categoryUrl(VaultCategory category) const;
    std::optional<VaultCategory> category(const Location &place) const;
    bool isCategoryRoot(const Location &place) const;
    Location defaultFolder(AssetKind kind) const;
    std::vector<Asset> assetsUnder(const Location &folder) const;

    // What changes files. Each call returns at once; the disk work is done in the order of the calls on a
    // thread of its own, and its effects (signals, rescan, toast) follow on the main thread when it is done.
    // A failure puts the system's description into lastError.

    // `done` is called with the new folder, or with nothing when there is none; a taken name gets a number.
    using FolderCreated = std::function<void(const std::optional<Location> &)>;
    void createFolder(const QString &name, const Location &parent, FolderCreated done = {});
    // The name replaces the whole last path component. Refuses category folders and empty names;
    // nothing happens when it is the item's name already.
    void rename(const Location &item, const QString &name);
    // Takes what MoveRule allows and leaves the rest where it is.
    void move(const std::vector<Location> &items, const Location &folder);
    // The folders of the categories that accept all of these kinds, depth first; without kinds all folders.
    std::vector<FolderChoice> flatFolders(const std::optional<QSet<AssetKind>> &kinds = {}) const;

    // Newest first.
    const std::vector<TrashItem> &trashItems() const;
    void moveToTrash(const std::vector<Location> &items);
    void restore(const std::vector<TrashItem> &items);
    void deleteForever(const std::vector<TrashItem> &items);
    // Deletes what has lain in the trash for 30 days; done at the start and every hour, too.
    void purgeExpired();

    // Without a folder, files are filed by their type. Folders keep their structure.
    void importItems(const std::vector<Location> &items, const std::optional<Location> &into,
                     ImportMode mode);
    // Where the last imports put their files, newest first, at most 40.
    const std::vector<Location> &recentImports() const;
    FileProgress &progress() const;
    // Ends the work on files, as cancel does, and waits for it. Nothing is taken on afterwards.
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
    void toast(const QString &text, bool ok);

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace cratewell
