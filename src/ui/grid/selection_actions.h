#pragma once

#include "platform/location.h"
#include "ui/shell/ui_context.h"

#include <QObject>
#include <QtQml/qqml.h>

#include <vector>

class QJSEngine;
class QQmlEngine;

namespace cratewell {

// What can be done with the selected assets that are in view. Main thread.
class SelectionActions : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(int count READ count NOTIFY changed FINAL)
    // Every one of them is.
    Q_PROPERTY(bool favorite READ isFavorite NOTIFY favoriteChanged FINAL)
    // An editor takes the focused one now.
    Q_PROPERTY(bool insertable READ isInsertable NOTIFY insertableChanged FINAL)
public:
    // As Target.
    enum Editor { Resolve, Premiere };
    Q_ENUM(Editor)

    explicit SelectionActions(const UiContext &context, QObject *parent = nullptr);
    static SelectionActions *create(QQmlEngine *engine, QJSEngine *);

    int count() const;
    bool isFavorite() const;
    bool isInsertable() const;

    Q_INVOKABLE void insertInto(cratewell::SelectionActions::Editor editor);
    // Makes all of them favorites; when all are, none.
    Q_INVOKABLE void toggleFavorite();
    Q_INVOKABLE void moveTo(const cratewell::Location &folder);
    Q_INVOKABLE void moveToTrash();
    // Asks for the focused one's new name.
    Q_INVOKABLE void rename();
    Q_INVOKABLE void clear();

Q_SIGNALS:
    void changed();
    void favoriteChanged();
    void insertableChanged();

private:
    std::vector<Location> items() const;

    const UiContext m_context;
};

} // namespace cratewell
