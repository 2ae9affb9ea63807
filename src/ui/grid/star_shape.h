#pragma once

#include <QPainterPath>
#include <QPolygonF>

namespace cratewell {

// The four-pointed star of the program's icon and title mark, filling `rect`.
inline QPainterPath starShape(const QRectF &rect)
{
    constexpr double near = 41.0 / 110.0;
    constexpr double far = 69.0 / 110.0;
    QPolygonF outline;
    for (const QPointF &corner : {QPointF(0.5, 0), QPointF(far, near), QPointF(1, 0.5), QPointF(far, far),
                                  QPointF(0.5, 1), QPointF(near, far), QPointF(0, 0.5), QPointF(near, near)})
        outline << QPointF(rect.x() + corner.x() * rect.width(), rect.y() + corner.y() * rect.height());
    QPainterPath path;
    path.addPolygon(outline);
    path.closeSubpath();
    return path;
}

} // namespace cratewell
