#pragma once

#include "vault/asset.h"

#include <QObject>
#include <QQmlParserStatus>
#include <QtQml/qqmlregistration.h>
#include <optional>

namespace cratewell {

class AppState;
class Inserter;
class Prefs;
class Vault;

// What the inspector says about the focused asset. Main thread. Empty texts and false while there is none.
class SelectionInfo : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    QML_ELEMENT
    Q_PROPERTY(bool present READ isPresent NOTIFY assetChanged FINAL)
    Q_PROPERTY(cratewell::Location url READ url NOTIFY assetChanged FINAL)
    Q_PROPERTY(cratewell::AssetKind kind READ kind NOTIFY assetChanged FINAL)
    Q_PROPERTY(QString kindLabel READ kindLabel NOTIFY assetChanged FINAL)
    Q_PROPERTY(QString name READ name NOTIFY assetChanged FINAL)
    // The folders from the category down to the file: "Overlays › Light Leaks".
    Q_PROPERTY(QString place READ place NOTIFY assetChanged FINAL)
    Q_PROPERTY(bool favorite READ isFavorite NOTIFY favoriteChanged FINAL)
    // Editors place it on a timeline; LUTs are stored only.
    Q_PROPERTY(bool insertable READ isInsertable NOTIFY assetChanged FINAL)
    // Where an insert goes.
    Q_PROPERTY(QString destination READ destination NOTIFY destinationChanged FINAL)
public:
    explicit SelectionInfo(QObject *parent = nullptr);

    // All must outlive this. In QML they are the program's own.
    void follow(AppState &state, const Vault &vault, const Prefs &prefs, Inserter &inserter);

    bool isPresent() const { return m_asset.has_value(); }
    Location url() const { return m_asset ? m_asset->url : Location(); }
    AssetKind kind() const { return m_asset ? m_asset->kind : AssetKind::Video; }
    QString kindLabel() const;
    QString name() const { return url().baseName(); }
    QString place() const;
    bool isFavorite() const;
    bool isInsertable() const { return m_asset && m_asset->kind != AssetKind::Lut; }
    const QString &destination() const { return m_destination; }

    void classBegin() override {}
    void componentComplete() override;

Q_SIGNALS:
    void assetChanged();
    void favoriteChanged();
    void destinationChanged();

private:
    void takeAsset();
    void takeDestination();

    AppState *m_state = nullptr;
    const Vault *m_vault = nullptr;
    const Prefs *m_prefs = nullptr;
    Inserter *m_inserter = nullptr;
    std::optional<Asset> m_asset;
    QString m_destination;
};

// The folder of `asset` below `root` as "Overlays › Light Leaks"; its own name when it lies elsewhere.
QString placeText(const Location &root, const Location &asset);

} // namespace cratewell
