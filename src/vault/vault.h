#pragma once

#include "vault/vault_picture.h"

#include <QObject>

class QTimer;

namespace cratewell {

class Defaults;
class FileEvents;

// The library on disk: makes its folders, keeps a picture of it that follows the disk. Main thread; scans run
// on a worker. Failures to create, list or read leave empty or partial results. Owned by Application.
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
    const std::shared_ptr<const VaultPicture> &picture() const;
    QString lastError() const;
    Q_INVOKABLE void clearLastError();
    qint64 totalSize() const;

    Location categoryUrl(VaultCategory category) const;
    std::optional<VaultCategory> category(const Location &place) const;
    bool isCategoryRoot(const Location &place) const;
    Location defaultFolder(AssetKind kind) const;
    std::vector<Asset> assetsUnder(const Location &folder) const;

Q_SIGNALS:
    // Before anything is done at the new root.
    void rootChanged(const cratewell::Location &root);
    // After changeRoot has started on the new root.
    void opened();
    // A newer picture is published.
    void rescanned(const cratewell::VaultChanges &changes);
    void lastErrorChanged();
    void toast(const QString &text, bool ok);

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace cratewell
