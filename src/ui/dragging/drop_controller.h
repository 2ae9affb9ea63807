#pragma once

#include "ui/dragging/dropped_items.h"
#include "ui/shell/ui_context.h"

#include <QObject>
#include <QUrl>
#include <QtQml/qqml.h>
#include <optional>

class QJSEngine;
class QQmlEngine;

namespace cratewell {

// What hovers over the window, and what becomes of it where it is dropped. There is one drag at a time: it is
// weighed when it enters a view and asked about from there on.
class DropController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QString ownType READ ownType CONSTANT FINAL)
public:
    // Sort: copied, but to where its type belongs, because the folder does not take it.
    enum Effect { Nothing, Move, Copy, Sort, MoveAndCopy };
    Q_ENUM(Effect)

    explicit DropController(const UiContext &context, QObject *parent = nullptr);
    static DropController *create(QQmlEngine *engine, QJSEngine *);

    static QString ownType();

    // `ownData` is what the drag holds in our own type; empty when it holds none. Of a long list only the
    // beginning is looked at.
    Q_INVOKABLE void weigh(const QList<QUrl> &urls, const QString &ownData);
    // What dropping what was weighed on this folder would do.
    Q_INVOKABLE cratewell::DropController::Effect effectOn(const cratewell::Location &folder) const;
    // What dropping it on the grid would do, which only takes what is not of the vault.
    Q_INVOKABLE cratewell::DropController::Effect effectOnGrid() const;

    // Moves what is of the vault and copies the rest.
    Q_INVOKABLE void dropOn(const cratewell::Location &folder, const QList<QUrl> &urls,
                            const QString &ownData);
    // Copies what is not of the vault into the folder that is shown, else to where its type belongs.
    Q_INVOKABLE void dropOnGrid(const QList<QUrl> &urls, const QString &ownData);

private:
    std::optional<Location> shownFolder() const;
    Effect importInto(const Location &folder) const;

    const UiContext m_context;
    DroppedItems m_weighed;
    bool m_imports = false;
};

} // namespace cratewell
