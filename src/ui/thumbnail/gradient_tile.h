#pragma once

#include "ui/controls/drawn_item.h"

#include <QColor>
#include <QtQml/qqml.h>

namespace cratewell {

// A rounded rectangle with a gradient, its corners smooth on every back end.
class GradientTile : public cratewell::DrawnItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor start READ start WRITE setStart NOTIFY lookChanged FINAL)
    Q_PROPERTY(QColor end READ end WRITE setEnd NOTIFY lookChanged FINAL)
    Q_PROPERTY(QColor rim READ rim WRITE setRim NOTIFY lookChanged FINAL)
    Q_PROPERTY(Direction direction READ direction WRITE setDirection NOTIFY lookChanged FINAL)
    Q_PROPERTY(double radius READ radius WRITE setRadius NOTIFY lookChanged FINAL)
public:
    enum Direction { Diagonal, Down, Across };
    Q_ENUM(Direction)

    QColor start() const { return m_start; }
    void setStart(const QColor &start) { change(m_start, start); }
    QColor end() const { return m_end; }
    void setEnd(const QColor &end) { change(m_end, end); }
    // A line of one item unit just inside the edge; transparent for none.
    QColor rim() const { return m_rim; }
    void setRim(const QColor &rim) { change(m_rim, rim); }
    Direction direction() const { return m_direction; }
    void setDirection(Direction direction) { change(m_direction, direction); }
    double radius() const { return m_radius; }
    void setRadius(double radius) { change(m_radius, radius); }

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

    QColor m_start;
    QColor m_end;
    QColor m_rim = Qt::transparent;
    Direction m_direction = Diagonal;
    double m_radius = 6;
};

} // namespace cratewell
