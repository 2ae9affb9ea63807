#pragma once

#include <QImage>
#include <QQuickItem>
#include <QtQml/qqml.h>

namespace cratewell {

// An item whose picture is painted once into an image of the screen's own pixels and kept until its size, the
// screen or a property changes; a frame costs nothing beyond showing it. Works on every back end. Derived
// types name it with its namespace, by which the QML tools find it.
class DrawnItem : public QQuickItem
{
    Q_OBJECT
    QML_ANONYMOUS
public:
    explicit DrawnItem(QQuickItem *parent = nullptr);

protected:
    // `pixels` is never empty; `ratio` is device pixels per item unit. Main thread.
    virtual QImage draw(QSize pixels, qreal ratio) const = 0;
    // To be called when what draw() reads has changed.
    void redraw();

    void updatePolish() override;
    QSGNode *updatePaintNode(QSGNode *old, UpdatePaintNodeData *) override;
    void geometryChange(const QRectF &now, const QRectF &before) override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;

private:
    QImage m_image;
    bool m_stale = true;
    bool m_uploadPending = false;
};

// For property setters of drawn items: assigns, and returns whether that changed anything.
template<typename T> bool assignIfDifferent(T &member, const T &value)
{
    if (member == value)
        return false;
    member = value;
    return true;
}

} // namespace cratewell
