#pragma once

#include "platform/location.h"

#include <QObject>
#include <QUrl>
#include <QtQml/qqml.h>
#include <optional>
#include <vector>

class QJSEngine;
class QQmlEngine;

namespace cratewell {

class AssetActions;
class Defaults;
class Vault;

// Where the import page puts what it is given, kept for the next start, and the ways to give it something.
class ImportController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    // Empty for a place by the type of the file; so also while the chosen folder is not there.
    Q_PROPERTY(cratewell::Location destination READ destination NOTIFY destinationChanged FINAL)
    Q_PROPERTY(QString label READ label NOTIFY destinationChanged FINAL)
public:
    ImportController(Vault &vault, Defaults &defaults, AssetActions &actions);
    static ImportController *create(QQmlEngine *engine, QJSEngine *);

    const Location &destination() const { return m_destination; }
    QString label() const;

    // An empty one for a place by type.
    Q_INVOKABLE void choose(const cratewell::Location &folder);
    Q_INVOKABLE void chooseFiles();
    Q_INVOKABLE void chooseFolder();
    // Whether any of these lies outside the vault and so can be imported.
    Q_INVOKABLE bool takes(const QList<QUrl> &urls) const;
    Q_INVOKABLE void take(const QList<QUrl> &urls);

Q_SIGNALS:
    void destinationChanged();

private:
    void refresh();
    std::optional<Location> into() const;
    std::vector<Location> outside(const QList<QUrl> &urls) const;

    Vault &m_vault;
    Defaults &m_defaults;
    AssetActions &m_actions;
    Location m_destination;
};

} // namespace cratewell
