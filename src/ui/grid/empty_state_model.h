#pragma once

#include "state/scope.h"

#include <QColor>
#include <QObject>
#include <QtQml/qqmlregistration.h>

class QJSEngine;
class QQmlEngine;

namespace cratewell {

class AppState;
class AssetActions;
class Vault;

// What the grid says instead of showing nothing, and the one thing to do about it.
struct Notice
{
    enum class Action : quint8 { OpenFolder, ShowAll, ClearSearch };

    QString icon; // a ligature of the icon font
    QColor start; // of the tile's gradient
    QColor end;
    QString title;
    QString sentence;
    Action action = Action::ShowAll;

    friend bool operator==(const Notice &, const Notice &) = default;
};

Notice noticeFor(const Scope &scope, const QString &search, const Location &root);
QString actionText(Notice::Action action);

// The notice for what is in view now, in QML. Main thread.
class EmptyStateModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QString icon READ icon NOTIFY changed FINAL)
    Q_PROPERTY(QColor start READ start NOTIFY changed FINAL)
    Q_PROPERTY(QColor end READ end NOTIFY changed FINAL)
    Q_PROPERTY(QString title READ title NOTIFY changed FINAL)
    Q_PROPERTY(QString sentence READ sentence NOTIFY changed FINAL)
    Q_PROPERTY(QString action READ action NOTIFY changed FINAL)
    // Nothing is said to be empty before it has been looked at.
    Q_PROPERTY(bool known READ isKnown NOTIFY changed FINAL)
public:
    EmptyStateModel(AppState &state, const Vault &vault, AssetActions &actions);
    static EmptyStateModel *create(QQmlEngine *engine, QJSEngine *);

    QString icon() const { return m_notice.icon; }
    QColor start() const { return m_notice.start; }
    QColor end() const { return m_notice.end; }
    QString title() const { return m_notice.title; }
    QString sentence() const { return m_notice.sentence; }
    QString action() const { return actionText(m_notice.action); }
    bool isKnown() const;

    Q_INVOKABLE void act();

Q_SIGNALS:
    void changed();

private:
    void renew();

    AppState &m_state;
    const Vault &m_vault;
    AssetActions &m_actions;
    Notice m_notice;
};

} // namespace cratewell
