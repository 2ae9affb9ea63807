#pragma once

#include "platform/location.h"
#include "ui/shell/ui_context.h"

#include <QObject>
#include <QtQml/qqml.h>

class QJSEngine;
class QQmlEngine;

namespace cratewell {

// What the user asks for in a view where QML has no value to say it with.
class Requests : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
public:
    explicit Requests(const UiContext &context, QObject *parent = nullptr);
    static Requests *create(QQmlEngine *engine, QJSEngine *);

    // Does nothing without a focused asset.
    Q_INVOKABLE void toggleFavorite();
    Q_INVOKABLE void openInFileManager(const cratewell::Location &folder);
    Q_INVOKABLE void revealInFileManager(const cratewell::Location &item);

    // For the commands of a folder of the sidebar.
    Q_INVOKABLE void newFolderInside(const cratewell::Location &folder);
    Q_INVOKABLE void rename(const cratewell::Location &item);
    Q_INVOKABLE void moveToTrash(const cratewell::Location &item);

private:
    const UiContext m_context;
};

} // namespace cratewell
