#include "state/notifications.h"

#include <QPointer>
#include <QTimer>

namespace cratewell {

using namespace std::chrono_literals;

namespace {

std::chrono::milliseconds lifetime(const Notification &notification)
{
    switch (notification.severity) {
    case Notification::Severity::Success:
        return notification.actionText.isEmpty() ? 3500ms : 7000ms;
    case Notification::Severity::Warning:
        return 7000ms;
    case Notification::Severity::Error:
        return 10000ms;
    }
    return 7000ms;
}

void callOnTimer(std::chrono::milliseconds delay, const std::function<void()> &function)
{
    QTimer::singleShot(delay, Qt::PreciseTimer, function);
}

} // namespace

Notifications::Notifications(CallLater callLater)
    : m_callLater(callLater ? std::move(callLater) : CallLater(callOnTimer))
{
}

void Notifications::show(const Notification &notification)
{
    Place &place = notification.severity == Notification::Severity::Error ? m_banner : m_toast;
    place.notification = notification;
    const quint64 generation = ++place.generation;
    m_callLater(lifetime(notification), [this, alive = QPointer(this), &place, generation] {
        if (alive && place.generation == generation)
            hide(place);
    });
    Q_EMIT(this->*place.changed)();
}

void Notifications::takeToastAction()
{
    const std::function<void()> action = m_toast.notification.action;
    hide(m_toast);
    if (action)
        action();
}

void Notifications::closeBanner()
{
    hide(m_banner);
}

void Notifications::hide(Place &place)
{
    ++place.generation;
    if (place.notification.text.isEmpty())
        return;
    place.notification = {.text = {}, .severity = place.notification.severity};
    Q_EMIT(this->*place.changed)();
}

} // namespace cratewell
