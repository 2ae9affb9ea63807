#pragma once

#include "ui/shell/ui_context.h"

#include <QObject>
#include <QPixmap>
#include <QtQml/qqml.h>

class QJSEngine;
class QQmlEngine;
class QQuickItem;
class QQuickWindow;

namespace cratewell {

struct Asset;

// Drags the selected assets out of the grid: onto folders of the window and into other programs,
// which get copies.
class DragController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
public:
    explicit DragController(const UiContext &context, QObject *parent = nullptr);
    static DragController *create(QQmlEngine *engine, QJSEngine *);

    // Soon after this returns, when the pressed button is still down: the drag runs an event loop of its own,
    // in which the item that was pressed may go.
    Q_INVOKABLE void start(QQuickItem *pressed);

private:
    void run(QQuickWindow &window);
    QPixmap picture(const std::vector<Asset> &assets, double pixelRatio) const;

    const UiContext m_context;
    bool m_running = false;
};

} // namespace cratewell
