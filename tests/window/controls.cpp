#include "window/controls.h"

#include "support/wait.h"

#include <QQuickWindow>
#include <QTest>
#include <gtest/gtest.h>

#include <functional>

namespace cratewell::test {

using namespace Qt::StringLiterals;

namespace {

// Every text that a control's own properties show, or offer as help.
QStringList shownTexts(const QObject *control)
{
    QStringList texts;
    for (const char *property : {"text", "helpText", "placeholderText", "title", "name", "label"})
        texts += control->property(property).toString();
    texts.removeAll({});
    return texts;
}

} // namespace

std::vector<QAccessibleInterface *> Controls::visible() const
{
    std::vector<QAccessibleInterface *> found;
    const std::function<void(QAccessibleInterface *)> walk = [&](QAccessibleInterface *control) {
        if (!control || !control->isValid() || control->state().invisible)
            return;
        found.push_back(control);
        for (int i = 0; i < control->childCount(); ++i)
            walk(control->child(i));
    };
    walk(QAccessible::queryAccessibleInterface(&m_window));
    return found;
}

QAccessibleInterface *Controls::find(Role role, const QString &name) const
{
    for (QAccessibleInterface *control : visible()) {
        if (control->role() == role && control->text(QAccessible::Name) == name &&
            !control->state().offscreen)
            return control;
    }
    return nullptr;
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
    for (QAccessibleInterface *control : visible()) {
        if (control->role() == role && !control->state().offscreen)
            names.append(control->text(QAccessible::Name));
    }
    return names;
}

std::string Controls::accessibilityIssues() const
{
    const QList<Role> pressable{Button,   Card,   QAccessible::CheckBox, QAccessible::RadioButton,
                                MenuItem, Folder, QAccessible::PageTab,  QAccessible::ButtonMenu};
    const QList<Role> named = pressable + QList<Role>{Field, QAccessible::Slider, Toast, Heading};
    QStringList issues;
    for (QAccessibleInterface *control : visible()) {
        if (!named.contains(control->role()))
            continue;
        const QString name = control->text(QAccessible::Name);
        const QString what = u"role %1 \"%2\": "_s.arg(int(control->role())).arg(name);
        const QStringList texts = shownTexts(control->object());
        if (name.trimmed().isEmpty())
            issues.append(what + u"no name"_s);
        if (!texts.isEmpty() && !texts.contains(name))
            issues.append(what + u"shows "_s + texts.join(u" / "_s));
        const QAccessibleActionInterface *actions = control->actionInterface();
        if (pressable.contains(control->role()) && (!actions || actions->actionNames().isEmpty()))
            issues.append(what + u"no action"_s);
    }
    return issues.join(u'\n').toStdString();
}

} // namespace cratewell::test
