#include "ui/grid/selectable_item.h"

#include <QAccessible>

namespace cratewell {

void SelectableItem::setSelected(bool selected)
{
    if (selected == m_selected)
        return;
    m_selected = selected;
    Q_EMIT selectedChanged();
    if (!isComponentComplete())
        return;
    QAccessibleEvent event(this, selected ? QAccessible::SelectionAdd : QAccessible::SelectionRemove);
    QAccessible::updateAccessibility(&event);
}

} // namespace cratewell
