#pragma once

#include <QColor>
#include <QImage>
#include <QQuickItem>

namespace cratewell {

// A rounded ring around the item's rectangle with a soft glow outside it, without shaders. The glow reaches
// `reach` beyond the item; nothing is drawn inside the ring.
class SelectionFrame : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY lookChanged FINAL)
    Q_PROPERTY(qreal radius READ radius WRITE setRadius NOTIFY lookChanged FINAL)
    Q_PROPERTY(qreal lineWidth READ lineWidth WRITE setLineWidth NOTIFY lookChanged FINAL)
    Q_PROPERTY(qreal reach READ reach WRITE setReach NOTIFY lookChanged FINAL)
    // Of the glow, 0 to 1.
    Q_PROPERTY(qreal strength READ strength WRITE setStrength NOTIFY lookChanged FINAL)
public:
    explicit SelectionFrame(QQuickItem *parent = nullptr);

    QColor color() const { return m_color; }
    void setColor(const QColor &color) { change(m_color, color); }
    qreal radius() const { return m_radius; }
    void setRadius(qreal radius) { change(m_radius, radius); }
    qreal lineWidth() const { return m_lineWidth; }
    void setLineWidth(qreal width) { change(m_lineWidth, width); }
    qreal reach() const { return m_reach; }
    void setReach(qreal reach) { change(m_reach, reach); }
    qreal strength() const { return m_strength; }
    void setStrength(qreal strength) { change(m_strength, strength); }

Q_SIGNALS:
    void lookChanged();

protected:
    QSGNode *updatePaintNode(QSGNode *old, UpdatePaintNodeData *data) override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;
    void geometryChange(const QRectF &now, const QRectF &before) override;

private:
    template<typename T> void change(T &member, const T &value)
    {
        if (member == value)
            return;
        member = value;
        m_lookChanged = true;
        update();
        Q_EMIT lookChanged();
    }

    QColor m_color;
    qreal m_radius = 0;
    qreal m_lineWidth = 2;
    qreal m_reach = 12;
    qreal m_strength = 1;
    bool m_lookChanged = true;
};

} // namespace cratewell
