#pragma once

#include "platform/location.h"

#include <QObject>
#include <QtQml/qqml.h>

class QJSEngine;
class QQmlEngine;

namespace cratewell {

class AppState;
class Vault;

// What the rename sheet asks about one item.
struct RenameQuestion
{
    Q_GADGET
    QML_VALUE_TYPE(renameQuestion)
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString name READ name CONSTANT)
    // How much of the name is typed over first: a file keeps its extension.
    Q_PROPERTY(int selectionLength READ selectionLength CONSTANT)
public:
    QString title() const;
    QString name() const { return item.name(); }
    int selectionLength() const { return int(isFile ? item.baseName().size() : item.name().size()); }
    // Empty when nothing of note follows.
    Q_INVOKABLE QString warning(const QString &typed) const;

    Location item;
    bool isFile = false;
};

// What the sheets that ask for a name say. They ask once, when they open: what they say does not change while
// they are open.
class NameForms : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
public:
    NameForms(const AppState &state, const Vault &vault);
    static NameForms *create(QQmlEngine *engine, QJSEngine *);

    // Where the folder that AppState is to make will be, and what will move into it.
    Q_INVOKABLE QString newFolderExplanation() const;
    // For the item that AppState is to rename.
    Q_INVOKABLE cratewell::RenameQuestion renameQuestion() const;
    // Empty when a file or folder can be called so.
    Q_INVOKABLE static QString problem(const QString &typed);

private:
    const AppState &m_state;
    const Vault &m_vault;
};

} // namespace cratewell
