#include "ui/grid/selection_frame.h"

#include "ui/thumbnail/alpha_mask.h"

#include <QPainter>
#include <QPainterPath>
#include <QQuickWindow>
#include <QSGNinePatchNode>
#include <QSGTexture>
#include <cmath>

namespace cratewell {

namespace {

QPainterPath rounded(const QRectF &rect, double radius)
{
    QPainterPath path;
    path.addRoundedRect(rect, radius, radius);
    return path;
}

// The four corners of the frame with one pixel between them to be stretched; lengths in device pixels.
QImage framePatch(const QColor &color, int edge, double reach, double radius, double lineWidth,
                  double strength)
{
    const QSize size(2 * edge + 1, 2 * edge + 1);
    const QRectF inner = QRectF(QPointF(), size).adjusted(reach, reach, -reach, -reach);
    const QPainterPath outline = rounded(inner, radius);

    QColor light = color;
    light.setAlphaF(float(strength));
    QImage patch = tinted(blurred(coverage(outline, size), reach / 2.5), light);
    QPainter painter(&patch);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.fillPath(outline, Qt::black);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    const QRectF hole = inner.adjusted(lineWidth, lineWidth, -lineWidth, -lineWidth);
    painter.fillPath(outline.subtracted(rounded(hole, std::max(0.0, radius - lineWidth))), color);
    return patch;
}

} // namespace

SelectionFrame::SelectionFrame(QQuickItem *parent) : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

QSGNode *SelectionFrame::updatePaintNode(QSGNode *old, UpdatePaintNodeData *)
{
    auto *node = static_cast<QSGNinePatchNode *>(old);
    // The toolkit asks hidden items, too, and every card has a frame.
    if (size().isEmpty() || !isVisible()) {
        delete node;
        return nullptr;
    }
    if (!node) {
        node = window()->createNinePatchNode();
        m_lookChanged = true;
    }
    const double ratio = window()->effectiveDevicePixelRatio();
    const int edge = int(std::ceil((2 * m_reach + std::max(m_radius, m_lineWidth)) * ratio));
    if (m_lookChanged) {
        const QImage patch = framePatch(m_color, edge, std::round(m_reach * ratio), m_radius * ratio,
                                        std::round(m_lineWidth * ratio), m_strength);
        node->setTexture(window()->createTextureFromImage(patch, QQuickWindow::TextureHasAlphaChannel));
        node->setDevicePixelRatio(ratio);
        m_lookChanged = false;
    }
    node->setPadding(edge / ratio, edge / ratio, edge / ratio, edge / ratio);
    node->setBounds(boundingRect().adjusted(-m_reach, -m_reach, m_reach, m_reach));
    node->update();
    return node;
}

void SelectionFrame::itemChange(ItemChange change, const ItemChangeData &data)
{
    if (change == ItemDevicePixelRatioHasChanged) {
        m_lookChanged = true;
        update();
    } else if (change == ItemVisibleHasChanged) {
        update();
    }
    QQuickItem::itemChange(change, data);
}

void SelectionFrame::geometryChange(const QRectF &now, const QRectF &before)
{
    QQuickItem::geometryChange(now, before);
    if (now.size() != before.size())
        update();
}

} // namespace cratewell
