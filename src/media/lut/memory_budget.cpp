#include "media/lut/memory_budget.h"

#include <algorithm>

namespace cratewell {

MemoryBudget::Share MemoryBudget::take(qint64 bytes)
{
    const qint64 wanted = std::clamp<qint64>(bytes, 0, m_all);
    std::unique_lock lock(m_mutex);
    const quint64 ticket = ++m_lastTicket;
    m_changed.wait(lock, [&] { return ticket == m_served + 1 && wanted <= m_left; });
    m_left -= wanted;
    ++m_served;
    m_changed.notify_all();
    return {*this, wanted};
}

int MemoryBudget::waiting() const
{
    const std::scoped_lock lock(m_mutex);
    return int(m_lastTicket - m_served);
}

void MemoryBudget::release(qint64 bytes)
{
    const std::scoped_lock lock(m_mutex);
    m_left += bytes;
    m_changed.notify_all();
}

MemoryBudget &lutReadingBudget()
{
    // Never destroyed: a thread that hangs in a dead disk may outlive the program's end.
    static auto *const budget = new MemoryBudget(qint64{256} << 20);
    return *budget;
}

} // namespace cratewell
