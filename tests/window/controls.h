#pragma once

#include <QAccessible>
#include <QPoint>
#include <QString>
#include <QStringList>

#include <string>
#include <vector>

class QQuickWindow;

namespace cratewell::test {

// The roles by which the window's controls are looked for.
inline constexpr auto Button = QAccessible::Button;
inline constexpr auto Card = QAccessible::ListItem;
inline constexpr auto Field = QAccessible::EditableText;
inline constexpr auto Folder = QAccessible::TreeItem;
inline constexpr auto Heading = QAccessible::Heading;
inline constexpr auto MenuItem = QAccessible::MenuItem;
inline constexpr auto Text = QAccessible::StaticText;
inline constexpr auto Toast = QAccessible::AlertMessage;

// The window as a person who hears it meets it: controls by role and accessible name. What changes a control
// waits until it is there, and is false when it does not come.
class Controls
{
public:
    using Role = QAccessible::Role;

    explicit Controls(QQuickWindow &window) : m_window(window) {}

    // Null when there is no such visible control.
    QAccessibleInterface *find(Role role, const QString &name) const;
    [[nodiscard]] bool shows(Role role, const QString &name) const;
    [[nodiscard]] bool hides(Role role, const QString &name) const;
    // The middle of it in the window; fails the test when it is not there.
    QPoint middle(Role role, const QString &name) const;
    [[nodiscard]] bool click(Role role, const QString &name, Qt::KeyboardModifiers modifiers = {},
                             Qt::MouseButton button = Qt::LeftButton) const;
    // By the actions that assistive tools use.
    [[nodiscard]] bool press(Role role, const QString &name) const;
    [[nodiscard]] bool focus(Role role, const QString &name) const;
    // Names of all visible controls of that role, in tree order.
    QStringList names(Role role) const;
    // One line for each visible control that has something wrong with it as a control: no name, a name that
    // is neither its text nor its help, no way to press it.
    std::string accessibilityIssues() const;

private:
    bool act(Role role, const QString &name, const QString &action) const;
    // In tree order; some may lie outside the view.
    std::vector<QAccessibleInterface *> visible() const;

    QQuickWindow &m_window;
};

} // namespace cratewell::test
