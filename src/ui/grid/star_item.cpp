#include "ui/grid/star_item.h"

#include <QQuickWindow>
#include <QSGImageNode>
#include <QSGTexture>
#include <memory>

namespace cratewell {

StarItem::StarItem(QQuickItem *parent) : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

void StarItem::setIconStyle(const QString &text)
{
    const IconStyle style = iconStyleFromRawValue(text);
    if (style == m_style)
        return;
    m_style = style;
    update();
    Q_EMIT iconStyleChanged();
}

QSGNode *StarItem::updatePaintNode(QSGNode *old, UpdatePaintNodeData *)
{
    std::unique_ptr<QSGNode> holder(old);
    const QSize size = (QSizeF(width(), height()) * window()->effectiveDevicePixelRatio()).toSize();
    if (size.isEmpty())
        return nullptr;
    auto *node = static_cast<QSGImageNode *>(old);
    if (!node) {
        node = window()->createImageNode();
        holder.reset(node);
        node->setOwnsTexture(true);
        node->setFiltering(QSGTexture::Nearest);
    }
    if (!node->texture() || node->texture()->textureSize() != size || m_drawnStyle != m_style) {
        node->setTexture(window()->createTextureFromImage(renderStar(m_style, size),
                                                          QQuickWindow::TextureHasAlphaChannel));
        m_drawnStyle = m_style;
    }
    node->setRect(boundingRect());
    return holder.release();
}

void StarItem::itemChange(ItemChange change, const ItemChangeData &data)
{
    if (change == ItemDevicePixelRatioHasChanged)
        update();
    QQuickItem::itemChange(change, data);
}

} // namespace cratewell
