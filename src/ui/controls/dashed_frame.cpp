#include "ui/controls/dashed_frame.h"

#include <QPainter>

namespace cratewell {

void DashedFrame::setColor(const QColor &color)
{
    if (!assignIfDifferent(m_color, color))
        return;
    redraw();
    Q_EMIT colorChanged();
}

void DashedFrame::setRadius(double radius)
{
    if (!assignIfDifferent(m_radius, radius))
        return;
    redraw();
    Q_EMIT radiusChanged();
}

QImage DashedFrame::draw(QSize pixels, qreal ratio) const
{
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(ratio, ratio);
    QPen pen(m_color, 1);
    pen.setDashPattern({4, 3});
    painter.setPen(pen);
    const QSizeF size = QSizeF(pixels) / ratio;
    painter.drawRoundedRect(QRectF(0.5, 0.5, size.width() - 1, size.height() - 1), m_radius, m_radius);
    return image;
}

} // namespace cratewell
