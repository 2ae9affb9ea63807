#include "media/request_order.h"

namespace cratewell {

RequestPlace RequestOrder::next(RequestPlace::Rank rank)
{
    if (!m_burstIsOpen) {
        m_burstIsOpen = true;
        ++m_burst;
        QMetaObject::invokeMethod(
            &m_eventLoop, [this] { m_burstIsOpen = false; }, Qt::QueuedConnection);
    }
    return {rank, m_burst, ++m_number};
}

} // namespace cratewell
