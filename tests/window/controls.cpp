#include "window/controls.h"

#include "support/wait.h"

#include <QQuickWindow>
#include <QTest>
#include <gtest/gtest.h>

#include <functional>

namespace cratewell::test {

using namespace Qt::StringLiterals;

namespace {

bool isPressable(QAccessible::Role role)
{
    switch (role) {
    case QAccessible::Button:
    case QAccessible::CheckBox:
    case QAccessible::RadioButton:
    case QAccessible::MenuItem:
    case QAccessible::ListItem:
    case QAccessible::TreeItem:
    case QAccessible::PageTab:
    case QAccessible::ButtonMenu:
        return true;
    default:
        return false;
    }
}

// Every text that a control's own properties show, or offer as help.
QStringList shownTexts(const QObject &control)
{
    QStringList texts;
    for (const char *property : {"text", "helpText", "placeholderText", "title", "name", "label"}) {
        const QString text = control.property(property).toString();
        if (!text.isEmpty())
            texts.append(text);
    }
    return texts;
}

bool mustHaveName(QAccessible::Role role)
{
    return isPressable(role) || role == QAccessible::EditableText || role == QAccessible::Slider ||
           role == QAccessible::AlertMessage || role == QAccessible::Heading;
}

} // namespace

template<typename Visit> void Controls::visit(const Visit &visit) const
{
    const std::function<void(QAccessibleInterface *)> walk = [&](QAccessibleInterface *interface) {
        if (!interface || !interface->isValid() || interface->state().invisible)
            return;
        visit(*interface);
        for (int i = 0; i < interface->childCount(); ++i)
            walk(interface->child(i));
    };
    walk(QAccessible::queryAccessibleInterface(&m_window));
}

QAccessibleInterface *Controls::find(Role role, const QString &name) const
{
    QAccessibleInterface *found = nullptr;
    visit([&](QAccessibleInterface &interface) {
        if (!found && interface.role() == role && interface.text(QAccessible::Name) == name &&
            !interface.state().offscreen)
            found = &interface;
    });
    return found;
}

bool Controls::shows(Role role, const QString &name) const
{
    return waitUntil([&] { return find(role, name) != nullptr; });
}

bool Controls::hides(Role role, const QString &name) const
{
    return waitUntil([&] { return find(role, name) == nullptr; });
}

QPoint Controls::middle(Role role, const QString &name) const
{
    const QAccessibleInterface *control = find(role, name);
    EXPECT_TRUE(control) << name.toStdString();
    return control ? m_window.mapFromGlobal(control->rect().center()) : QPoint();
}

bool Controls::click(Role role, const QString &name, Qt::KeyboardModifiers modifiers,
                     Qt::MouseButton button) const
{
    if (!shows(role, name))
        return false;
    QTest::mouseClick(&m_window, button, modifiers, middle(role, name));
    return true;
}

bool Controls::press(Role role, const QString &name) const
{
    return act(role, name, QAccessibleActionInterface::pressAction());
}

bool Controls::focus(Role role, const QString &name) const
{
    return act(role, name, QAccessibleActionInterface::setFocusAction());
}

bool Controls::act(Role role, const QString &name, const QString &action) const
{
    QAccessibleInterface *control = shows(role, name) ? find(role, name) : nullptr;
    if (!control || !control->actionInterface())
        return false;
    control->actionInterface()->doAction(action);
    return true;
}

QStringList Controls::names(Role role) const
{
    QStringList names;
    visit([&](QAccessibleInterface &interface) {
        if (interface.role() == role && !interface.state().offscreen)
            names.append(interface.text(QAccessible::Name));
    });
    return names;
}

std::string Controls::accessibilityIssues() const
{
    QStringList issues;
    visit([&](QAccessibleInterface &interface) {
        const QAccessible::Role role = interface.role();
        const QString name = interface.text(QAccessible::Name);
        const QString what = u"role %1 \"%2\" at %3,%4"_s.arg(int(role))
                                 .arg(name)
                                 .arg(interface.rect().x())
                                 .arg(interface.rect().y());
        if (mustHaveName(role) && name.trimmed().isEmpty())
            issues.append(what + u": no name"_s);
        if (mustHaveName(role) && interface.object()) {
            const QStringList texts = shownTexts(*interface.object());
            if (!texts.isEmpty() && !texts.contains(name))
                issues.append(what + u": shows "_s + texts.join(u" / "_s));
        }
        const QAccessibleActionInterface *actions = interface.actionInterface();
        if (isPressable(role) && (!actions || actions->actionNames().isEmpty()))
            issues.append(what + u": no action"_s);
    });
    return issues.join(u'\n').toStdString();
}

} // namespace cratewell::test
