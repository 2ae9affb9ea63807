#pragma once

#include "ui/controls/drawn_item.h"

#include <QColor>
#include <QtQml/qqml.h>

namespace cratewell {

// The outline of a place where things can be dropped.
class DashedFrame : public cratewell::DrawnItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged FINAL)
    Q_PROPERTY(double radius READ radius WRITE setRadius NOTIFY radiusChanged FINAL)
public:
    QColor color() const { return m_color; }
    void setColor(const QColor &color);
    double radius() const { return m_radius; }
    void setRadius(double radius);

Q_SIGNALS:
    void colorChanged();
    void radiusChanged();

protected:
    QImage draw(QSize pixels, qreal ratio) const override;

private:
    QColor m_color = Qt::gray;
    double m_radius = 18;
};

} // namespace cratewell
