#pragma once

#include <QQuickItem>

namespace cratewell {

// One entry of a list that reports to assistive programs when it is selected or no longer is. The role and
// name are given by the Accessible properties as usual.
class SelectableItem : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool selected READ isSelected WRITE setSelected NOTIFY selectedChanged FINAL)
public:
    using QQuickItem::QQuickItem;

    bool isSelected() const { return m_selected; }
    void setSelected(bool selected);

Q_SIGNALS:
    void selectedChanged();

private:
    bool m_selected = false;
};

} // namespace cratewell
