#pragma once

#include "ui/drawn_item.h"

#include <QColor>
#include <QtQml/qqml.h>

namespace cratewell {

// A rounded tile coloured from its upper left corner to its lower right one.
class GradientTile : public cratewell::DrawnItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor start READ start WRITE setStart NOTIFY lookChanged FINAL)
    Q_PROPERTY(QColor end READ end WRITE setEnd NOTIFY lookChanged FINAL)
    Q_PROPERTY(double radius READ radius WRITE setRadius NOTIFY lookChanged FINAL)
public:
    QColor start() const { return m_start; }
    void setStart(const QColor &start) { change(m_start, start); }
    QColor end() const { return m_end; }
    void setEnd(const QColor &end) { change(m_end, end); }
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
    double m_radius = 6;
};

} // namespace cratewell
