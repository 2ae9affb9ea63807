#pragma once

#include <QtGlobal>
#include <condition_variable>
#include <mutex>

namespace cratewell {

// Memory that several threads share: who wants more than is left waits, first come, first served. Any thread.
class MemoryBudget
{
public:
    explicit MemoryBudget(qint64 bytes) : m_left(bytes), m_all(bytes) {}

    // A part of the budget, returned at its end.
    class Share
    {
    public:
        Share(MemoryBudget &budget, qint64 bytes) : m_budget(budget), m_bytes(bytes) {}
        ~Share() { m_budget.release(m_bytes); }
        Share(const Share &) = delete;
        Share &operator=(const Share &) = delete;

    private:
        MemoryBudget &m_budget;
        qint64 m_bytes;
    };

    // Blocks until there is as much; what is larger than the whole budget takes all of it.
    [[nodiscard]] Share take(qint64 bytes);
    // How many threads wait.
    int waiting() const;

private:
    void release(qint64 bytes);

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    qint64 m_left;
    const qint64 m_all;
    quint64 m_lastTicket = 0;
    quint64 m_served = 0;
};

// Of all that read LUTs in this process: large ones are read one after the other.
MemoryBudget &lutReadingBudget();

} // namespace cratewell
