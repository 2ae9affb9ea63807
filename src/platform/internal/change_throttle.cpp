#include "platform/internal/change_throttle.h"

namespace cratewell {

ChangeThrottle::ChangeThrottle(std::function<void()> report) : m_notify(std::move(report))
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(std::chrono::milliseconds(400));
    QObject::connect(&m_pause, &QTimer::timeout, &m_pause, [this] {
        if (std::exchange(m_again, false))
            notify();
    });
}

void ChangeThrottle::notice()
{
    if (m_pause.isActive())
        m_again = true;
    else
        notify();
}

void ChangeThrottle::reset()
{
    m_pause.stop();
    m_again = false;
}

void ChangeThrottle::notify()
{
    m_pause.start();
    m_notify();
}

} // namespace cratewell
