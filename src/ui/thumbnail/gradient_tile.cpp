#include "ui/thumbnail/gradient_tile.h"

#include <QPainter>

namespace cratewell {

QImage GradientTile::draw(QSize pixels, qreal ratio) const
{
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QLinearGradient gradient(0, 0, m_direction == Down ? 0 : pixels.width(),
                             m_direction == Across ? 0 : pixels.height());
    gradient.setColorAt(0, m_start);
    gradient.setColorAt(1, m_end);
    const QRectF outline(QPointF(), pixels);
    const double radius = m_radius * ratio;
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    painter.drawRoundedRect(outline, radius, radius);
    if (m_rim.alpha() > 0) {
        const double inset = ratio / 2;
        painter.setPen(QPen(m_rim, ratio));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(outline.adjusted(inset, inset, -inset, -inset), radius - inset,
                                radius - inset);
    }
    return image;
}

} // namespace cratewell
