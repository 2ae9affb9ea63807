#pragma once

#include "ui/controls/drawn_item.h"

#include <QColor>
#include <QtQml/qqml.h>

namespace cratewell {

// The shadow or glow of a rounded rectangle that lies `blur` inside this item's edges on every side. The
// rectangle itself is left free, so that glass above it stays clear.
class SoftShadow : public cratewell::DrawnItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY lookChanged FINAL)
    Q_PROPERTY(double blur READ blur WRITE setBlur NOTIFY lookChanged FINAL)
    Q_PROPERTY(double radius READ radius WRITE setRadius NOTIFY lookChanged FINAL)
    // How far down the shadow falls; the hole stays where the rectangle is.
    Q_PROPERTY(double drop READ drop WRITE setDrop NOTIFY lookChanged FINAL)
public:
    QColor color() const { return m_color; }
    void setColor(const QColor &color) { change(m_color, color); }
    double blur() const { return m_blur; }
    void setBlur(double blur) { change(m_blur, blur); }
    double radius() const { return m_radius; }
    void setRadius(double radius) { change(m_radius, radius); }
    double drop() const { return m_drop; }
    void setDrop(double drop) { change(m_drop, drop); }

Q_SIGNALS:
    void lookChanged();

protected:
    QImage draw(QSize pixels, qreal ratio) const override;

private:
    template<typename T> void change(T &member, const T &value)
    {
        if (!assignIfDifferent(member, value))
            return;
        redraw();
        Q_EMIT lookChanged();
    }

    QColor m_color{0, 0, 0, 110};
    double m_blur = 24;
    double m_radius = 14;
    double m_drop = 0;
};

} // namespace cratewell
