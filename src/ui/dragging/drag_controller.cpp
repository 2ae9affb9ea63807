#include "ui/dragging/drag_controller.h"

#include "media/media.h"
#include "state/app_state.h"
#include "state/prefs.h"
#include "ui/dragging/drag_data.h"
#include "ui/dragging/drag_picture.h"
#include "ui/shell/ui_engine.h"
#include "ui/thumbnail/placeholder.h"

#include <QCursor>
#include <QDrag>
#include <QGuiApplication>
#include <QMimeData>
#include <QMouseEvent>
#include <QPointer>
#include <QQuickItem>
#include <QQuickWindow>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace cratewell {

namespace {

// The window has not seen the button go up: without this it would take the next click for part of the drag.
void releaseButton(QQuickWindow &window)
{
    const QPointF global = QCursor::pos();
    QMouseEvent release(QEvent::MouseButtonRelease, window.mapFromGlobal(global), global, Qt::LeftButton,
                        Qt::NoButton, QGuiApplication::keyboardModifiers());
    QCoreApplication::sendEvent(&window, &release);
}

} // namespace

DragController::DragController(const UiContext &context, QObject *parent)
    : QObject(parent), m_context(context)
{
}

DragController *DragController::create(QQmlEngine *engine, QJSEngine *)
{
    return new DragController(UiEngine::contextOf(engine));
}

void DragController::start(QQuickItem *pressed)
{
    if (m_running || !pressed || !pressed->window())
        return;
    m_running = true;
    const auto go = [self = QPointer(this), window = QPointer(pressed->window())] {
        if (self && window && (QGuiApplication::mouseButtons() & Qt::LeftButton))
            self->run(*window);
        if (self) // both may go during the drag
            self->m_running = false;
    };
    QMetaObject::invokeMethod(this, go, Qt::QueuedConnection);
}

void DragController::run(QQuickWindow &window)
{
    const std::vector<Asset> assets = m_context.state.selectedAssets();
    if (assets.empty())
        return;
    std::vector<Location> items;
    items.reserve(assets.size());
    for (const Asset &asset : assets)
        items.push_back(asset.url);

    const QPointer alive(&window);
    auto *drag = new QDrag(&window);
    drag->setMimeData(dragData(items).release());
    drag->setPixmap(picture(assets, window.effectiveDevicePixelRatio()));
    drag->setHotSpot({-10, -18}); // beside the pointer, so that what lies under it can be read
    drag->exec(Qt::CopyAction);
    if (alive)
        releaseButton(*alive);
}

QPixmap DragController::picture(const std::vector<Asset> &assets, double pixelRatio) const
{
    // The one that was pressed has the focus and lies in front.
    std::vector<Asset> shown(assets.begin(),
                             assets.begin() + qptrdiff(std::min(assets.size(), dragPictureDepth)));
    if (const auto &focused = m_context.state.selection()) {
        const auto found = std::ranges::find(shown, *focused);
        if (found != shown.end())
            std::rotate(shown.begin(), found, found + 1);
        else if (std::ranges::find(assets, *focused) != assets.end())
            shown.front() = *focused;
    }
    std::vector<QImage> pictures;
    for (const Asset &asset : shown) {
        QImage image = m_context.media.thumbnail(asset);
        if (image.isNull())
            image = placeholderPicture({asset.kind, PlaceholderLook::Sign::Kind, u"Material Icons"_s},
                                       {.size = dragPictureSize * pixelRatio});
        pictures.push_back(std::move(image));
    }
    return dragPicture(pictures, int(assets.size()), m_context.prefs.accent(), pixelRatio);
}

} // namespace cratewell
