#include "ui/gradient_tile.h"

#include <QPainter>

namespace cratewell {

QImage GradientTile::draw(QSize pixels, qreal ratio) const
{
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QLinearGradient gradient(0, 0, pixels.width(), pixels.height());
    gradient.setColorAt(0, m_start);
    gradient.setColorAt(1, m_end);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    painter.drawRoundedRect(QRectF(QPointF(), pixels), m_radius * ratio, m_radius * ratio);
    return image;
}

} // namespace cratewell
