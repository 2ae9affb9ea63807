#pragma once

#include "ui/shell/icon_renderer.h"

#include <QQuickItem>

namespace cratewell {

// The program's star in the metal of one icon style, sharp at any size.
class StarItem : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    // A stored icon style; what names none looks like "chrome".
    Q_PROPERTY(QString iconStyle READ iconStyle WRITE setIconStyle NOTIFY iconStyleChanged FINAL)
public:
    explicit StarItem(QQuickItem *parent = nullptr);

    QString iconStyle() const { return rawValue(m_style); }
    void setIconStyle(const QString &text);

Q_SIGNALS:
    void iconStyleChanged();

protected:
    QSGNode *updatePaintNode(QSGNode *old, UpdatePaintNodeData *data) override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;

private:
    IconStyle m_style = IconStyle::Chrome;
    IconStyle m_drawnStyle = IconStyle::Chrome;
};

} // namespace cratewell
