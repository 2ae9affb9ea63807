#pragma once

#include "platform/error.h"

#include <QObject>
#include <functional>
#include <memory>

namespace cratewell {

// The windows of other programs, through an X11 connection of its own. Without a reachable X server it knows
// no windows and reports nothing. Main thread.
class X11Windows final : public QObject
{
    Q_OBJECT
public:
    X11Windows();
    ~X11Windows() override;

    // Asks the window manager to activate the topmost window of that class; an error when there is none.
    [[nodiscard]] Result<void> activate(const QString &windowClass);

Q_SIGNALS:
    // A window got the focus; its two class names (WM_CLASS instance and class).
    void activated(const QStringList &windowClasses);

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace cratewell
