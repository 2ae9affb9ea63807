#pragma once

#include "vault/asset.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>
#include <optional>

class QJSEngine;
class QQmlEngine;

namespace cratewell {

class AppState;
class Inserter;
class Prefs;
class Vault;

// What the inspector says about the focused asset. Main thread. Empty texts and false while there is none.
class SelectionInfo : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
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
    SelectionInfo(const AppState &state, const Vault &vault, const Prefs &prefs, Inserter &inserter);
    static SelectionInfo *create(QQmlEngine *engine, QJSEngine *);

    bool isPresent() const { return m_asset.has_value(); }
    Location url() const { return m_asset ? m_asset->url : Location(); }
    AssetKind kind() const { return m_asset ? m_asset->kind : AssetKind::Video; }
    QString kindLabel() const;
    QString name() const { return url().baseName(); }
    QString place() const;
    bool isFavorite() const;
    bool isInsertable() const { return m_asset && m_asset->kind != AssetKind::Lut; }
    const QString &destination() const { return m_destination; }

Q_SIGNALS:
    void assetChanged();
    void favoriteChanged();
    void destinationChanged();

private:
    void takeAsset();
    void takeDestination();

    const AppState &m_state;
    const Vault &m_vault;
    const Prefs &m_prefs;
    Inserter &m_inserter;
    std::optional<Asset> m_asset;
    QString m_destination;
};

// The folder of `asset` below `root` as "Overlays › Light Leaks"; its own name when it lies elsewhere.
QString placeText(const Location &root, const Location &asset);

} // namespace cratewell
