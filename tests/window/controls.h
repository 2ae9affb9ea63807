#pragma once

#include <QAccessible>
#include <QPoint>
#include <QString>
#include <QStringList>

#include <string>

class QQuickWindow;

namespace cratewell::test {

// The window as a person who hears it meets it: controls by role and accessible name.
class Controls
{
public:
    explicit Controls(QQuickWindow &window) : m_window(window) {}

    // Null when there is no such visible control.
    QAccessibleInterface *find(QAccessible::Role role, const QString &name) const;
    // Clicks the middle of it; false when there is none.
    [[nodiscard]] bool click(QAccessible::Role role, const QString &name,
                             Qt::KeyboardModifiers modifiers = {}) const;
    [[nodiscard]] bool doubleClick(QAccessible::Role role, const QString &name) const;
    // Names of all visible controls of that role, in tree order.
    QStringList names(QAccessible::Role role) const;
    // One line for each visible control that has something wrong with it as a control: no name, a name that
    // is neither its text nor its help, no way to press it.
    std::string accessibilityIssues() const;

private:
    QPoint middle(QAccessibleInterface &control) const;
    template<typename Visit> void visit(const Visit &visit) const;

    QQuickWindow &m_window;
};

} // namespace cratewell::test
