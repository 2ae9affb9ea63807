#include "ui/controls/drawn_item.h"

#include <QQuickWindow>
#include <QSGImageNode>

namespace cratewell {

DrawnItem::DrawnItem(QQuickItem *parent) : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

void DrawnItem::redraw()
{
    m_stale = true;
    polish();
}

void DrawnItem::updatePolish()
{
    if (!m_stale || !window())
        return;
    const qreal ratio = window()->effectiveDevicePixelRatio();
    const QSize pixels = (size() * ratio).toSize();
    m_image = pixels.isEmpty() ? QImage() : draw(pixels, ratio);
    m_stale = false;
    m_uploadPending = true;
    update();
}

QSGNode *DrawnItem::updatePaintNode(QSGNode *old, UpdatePaintNodeData *)
{
    if (m_image.isNull()) {
        delete old;
        return nullptr;
    }
    auto *node = static_cast<QSGImageNode *>(old);
    if (!node) {
        node = window()->createImageNode();
        node->setFiltering(QSGTexture::Nearest);
        node->setOwnsTexture(true);
        m_uploadPending = true;
    }
    if (m_uploadPending) {
        node->setTexture(window()->createTextureFromImage(m_image));
        m_uploadPending = false;
    }
    node->setRect(boundingRect());
    return node;
}

void DrawnItem::geometryChange(const QRectF &now, const QRectF &before)
{
    QQuickItem::geometryChange(now, before);
    if (now.size() != before.size())
        redraw();
}

void DrawnItem::itemChange(ItemChange change, const ItemChangeData &data)
{
    if (change == ItemSceneChange || change == ItemDevicePixelRatioHasChanged)
        redraw();
    QQuickItem::itemChange(change, data);
}

} // namespace cratewell
