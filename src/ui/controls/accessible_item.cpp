#include "ui/controls/accessible_item.h"

#include <QCoreApplication>
#include <QInputMethodEvent>
#include <QQuickItem>
#include <private/qaccessiblequickitem_p.h>
#include <private/qquickitem_p.h>

namespace cratewell {

namespace {

class AccessibleItem final : public QAccessibleQuickItem, public QAccessibleEditableTextInterface
{
public:
    explicit AccessibleItem(QQuickItem *item) : QAccessibleQuickItem(item) {}

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleQuickItem::state();
        state.disabled = !target().isEnabled();
        if (role() == QAccessible::TreeItem) {
            state.expandable = target().property("expandable").toBool();
            state.expanded = state.expandable && target().property("expanded").toBool();
            state.collapsed = state.expandable && !state.expanded;
        }
        return state;
    }
    // Qt names an action twice that both the control and its view offer.
    QStringList actionNames() const override
    {
        QStringList names = QAccessibleQuickItem::actionNames();
        names.removeDuplicates();
        return names;
    }
    void *interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::EditableTextInterface && role() == QAccessible::EditableText)
            return static_cast<QAccessibleEditableTextInterface *>(this);
        return QAccessibleQuickItem::interface_cast(type);
    }

    void deleteText(int start, int end) override { replaceText(start, end, {}); }
    void insertText(int offset, const QString &text) override { replaceText(offset, offset, text); }
    // As from an input method, so that the field takes it for typed.
    void replaceText(int start, int end, const QString &text) override
    {
        const int length = characterCount();
        const int from = qBound(0, start, length);
        const int to = end < 0 ? length : qBound(from, end, length);
        if (!target().isEnabled() || target().property("readOnly").toBool())
            return;
        QInputMethodEvent event;
        event.setCommitString(text, from - cursorPosition(), to - from);
        QCoreApplication::sendEvent(object(), &event);
    }

private:
    QQuickItem &target() const { return *static_cast<QQuickItem *>(object()); }
};

QAccessibleInterface *makeAccessibleItem(const QString &, QObject *object)
{
    auto *item = qobject_cast<QQuickItem *>(object);
    return item && QQuickItemPrivate::get(item)->isAccessible ? new AccessibleItem(item) : nullptr;
}

} // namespace

void installAccessibleItems()
{
    QAccessible::installFactory(makeAccessibleItem);
}

} // namespace cratewell
