#include "platform/internal/change_throttle.h"

namespace cratewell {

ChangeThrottle::ChangeThrottle(std::function<void()> tell) : m_tell(std::move(tell))
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(std::chrono::milliseconds(400));
    QObject::connect(&m_pause, &QTimer::timeout, &m_pause, [this] {
        if (std::exchange(m_again, false))
            told();
    });
}

void ChangeThrottle::notice()
{
    if (m_pause.isActive())
        m_again = true;
    else
        told();
}

void ChangeThrottle::reset()
{
    m_pause.stop();
    m_again = false;
}

void ChangeThrottle::told()
{
    m_pause.start();
    m_tell();
}

} // namespace cratewell
