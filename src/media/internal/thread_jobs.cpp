#include "media/internal/thread_jobs.h"

namespace cratewell {

class ThreadJobs::Request : public PreviewRequest
{
public:
    explicit Request(std::shared_ptr<Ticket> ticket) : m_ticket(std::move(ticket)) {}

private:
    std::shared_ptr<Ticket> m_ticket;
};

ThreadJobs::ThreadJobs(int threads)
{
    m_pool.setMaxThreadCount(threads);
}

ThreadJobs::~ThreadJobs()
{
    m_pool.clear();
    m_pool.waitForDone();
}

std::unique_ptr<PreviewRequest> ThreadJobs::submit(const QByteArray &key, Work work)
{
    if (auto ticket = m_tickets.value(key).lock())
        return std::make_unique<Request>(std::move(ticket));
    const auto ticket = std::make_shared<Ticket>();
    const std::weak_ptr<Ticket> waiting = ticket;
    m_tickets.insert(key, waiting);
    const auto forget = [this, key, waiting] {
        const auto known = m_tickets.constFind(key);
        const bool ours =
            known != m_tickets.constEnd() && !known->owner_before(waiting) && !waiting.owner_before(*known);
        if (ours)
            m_tickets.erase(known);
    };
    const auto run = [this, waiting, forget, work = std::move(work)] {
        Effects effects;
        if (!waiting.expired())
            effects = work();
        QMetaObject::invokeMethod(
            this,
            [waiting, forget, effects = std::move(effects)] {
                forget();
                if (!effects)
                    return;
                const auto wanted = waiting.lock();
                auto next = effects(wanted != nullptr);
                if (wanted)
                    wanted->next = std::move(next);
            },
            Qt::QueuedConnection);
    };
    m_pool.start(run, ++m_newest);
    return std::make_unique<Request>(ticket);
}

} // namespace cratewell
