#pragma once

#include "ui/dragging/dropped_items.h"

#include <QObject>
#include <QtQml/qqml.h>
#include <functional>
#include <memory>
#include <optional>

class QJSEngine;
class QQmlEngine;

namespace cratewell {

class AppState;
class AssetActions;
class Vault;

// What hovers over the window, and what becomes of it where it is dropped. There is one drag at a time: all
// of it is judged when it enters a view, on a thread when there is much of it, and asked about from there on.
// Main thread.
class DropController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QString ownType READ ownType CONSTANT FINAL)
    // What the drag would do is not known yet.
    Q_PROPERTY(bool judging READ isJudging NOTIFY judgingChanged FINAL)
public:
    // Sort: copied, but to where its type belongs, because the folder does not take it. Unknown: while
    // judging.
    enum Effect { Nothing, Move, Copy, Sort, MoveAndCopy, Unknown };
    Q_ENUM(Effect)

    DropController(Vault &vault, const AppState &state, AssetActions &actions);
    static DropController *create(QQmlEngine *engine, QJSEngine *);

    static QString ownType();
    bool isJudging() const;

    // A drag has entered: its text/uri-list, and what it holds in our own type, empty when it holds none.
    Q_INVOKABLE void enter(const QString &uriList, const QString &ownData);
    // What dropping it on this folder would do.
    Q_INVOKABLE cratewell::DropController::Effect effectOn(const cratewell::Location &folder) const;
    // What dropping it on the grid would do, which only takes what is not of the vault.
    Q_INVOKABLE cratewell::DropController::Effect effectOnGrid() const;

    // Moves what is of the vault and copies the rest; once it is judged.
    Q_INVOKABLE void dropOn(const cratewell::Location &folder);
    // Copies what is not of the vault into the folder that is shown, else to where its type belongs; once it
    // is judged.
    Q_INVOKABLE void dropOnGrid();

Q_SIGNALS:
    void judgingChanged();

private:
    struct Drag;
    void finish(Drag &drag, JudgedDrop judged);
    void whenJudged(std::function<void(const JudgedDrop &)> drop);
    std::optional<Location> shownFolder() const;
    Effect effectOn(const Location &folder, const DropEffects &effects) const;

    Vault &m_vault;
    const AppState &m_state;
    AssetActions &m_actions;
    std::shared_ptr<Drag> m_drag;
};

} // namespace cratewell
