#pragma once

#include "platform/location.h"

#include <QObject>
#include <QQmlParserStatus>
#include <QtQml/qqml.h>

namespace cratewell {

class AppState;
class Vault;

// What the new-folder sheet says and does.
class NewFolderForm : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    QML_ELEMENT
    Q_INTERFACES(QQmlParserStatus)
    Q_PROPERTY(QString explanation READ explanation CONSTANT FINAL)
public:
    // What QML does when it has made the object.
    void follow(AppState &state);

    // Where the folder will be, and what will move into it.
    QString explanation() const { return m_explanation; }
    // Empty when a folder can be called so.
    Q_INVOKABLE static QString problem(const QString &name);

private:
    // Before the sheet reads anything: what it asks does not change while it is open.
    void classBegin() override;
    void componentComplete() override {}

    QString m_explanation;
};

// What the rename sheet says about the item it was opened for.
class RenameForm : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    QML_ELEMENT
    Q_INTERFACES(QQmlParserStatus)
    Q_PROPERTY(QString title READ title CONSTANT FINAL)
    Q_PROPERTY(QString name READ name CONSTANT FINAL)
    // How much of the name is typed over first: a file keeps its extension.
    Q_PROPERTY(int selectionLength READ selectionLength CONSTANT FINAL)
public:
    void follow(const AppState &state, const Vault &vault);

    QString title() const;
    QString name() const { return m_item.name(); }
    int selectionLength() const;
    Q_INVOKABLE static QString problem(const QString &name);
    Q_INVOKABLE QString warning(const QString &name) const;

private:
    // Before the sheet reads anything: what it asks does not change while it is open.
    void classBegin() override;
    void componentComplete() override {}

    Location m_item;
    bool m_isFile = false;
};

} // namespace cratewell
