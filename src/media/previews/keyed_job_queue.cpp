#include "media/previews/keyed_job_queue.h"

#include <atomic>
#include <mutex>
#include <utility>

namespace cratewell {

void endOrAbandon(std::unique_ptr<QThreadPool> pool)
{
    constexpr int patience = 1000; // milliseconds
    if (!pool->waitForDone(patience))
        static_cast<void>(pool.release()); // its own end would wait for ever
}

struct KeyedJobQueue::Job
{
    enum class Phase { Waiting, Started, Dropped };

    std::atomic<Phase> phase = Phase::Waiting;
    int requests = 0;                     // main thread
    std::unique_ptr<PreviewRequest> next; // main thread
};

class KeyedJobQueue::Request : public PreviewRequest
{
public:
    explicit Request(std::shared_ptr<Job> job) : m_job(std::move(job)) { ++m_job->requests; }
    ~Request() override
    {
        if (--m_job->requests > 0)
            return;
        Job::Phase waiting = Job::Phase::Waiting;
        m_job->phase.compare_exchange_strong(waiting, Job::Phase::Dropped);
        m_job->next.reset();
    }

private:
    std::shared_ptr<Job> m_job;
};

// Where threads that may outlive the owner leave what they have done.
struct KeyedJobQueue::Mailbox
{
    std::mutex mutex;
    KeyedJobQueue *owner = nullptr;
};

KeyedJobQueue::KeyedJobQueue(int threads)
    : m_pool(std::make_unique<QThreadPool>()), m_mailbox(std::make_shared<Mailbox>())
{
    m_pool->setMaxThreadCount(threads);
    m_mailbox->owner = this;
}

KeyedJobQueue::~KeyedJobQueue()
{
    {
        const std::scoped_lock lock(m_mailbox->mutex);
        m_mailbox->owner = nullptr;
    }
    m_pool->clear();
    endOrAbandon(std::move(m_pool));
}

std::unique_ptr<PreviewRequest> KeyedJobQueue::submit(const QByteArray &key, Work work)
{
    std::shared_ptr<Job> &known = m_jobs[key];
    if (known && known->phase != Job::Phase::Dropped)
        return std::make_unique<Request>(known);
    known = std::make_shared<Job>();
    const auto run = [key, job = known, mailbox = m_mailbox, work = std::move(work)] {
        Job::Phase waiting = Job::Phase::Waiting;
        const bool wanted = job->phase.compare_exchange_strong(waiting, Job::Phase::Started);
        Effects effects = wanted ? work() : Effects();
        const std::scoped_lock lock(mailbox->mutex);
        if (KeyedJobQueue *owner = mailbox->owner)
            QMetaObject::invokeMethod(
                owner, [owner, key, job, effects = std::move(effects)] { owner->finish(key, job, effects); },
                Qt::QueuedConnection);
    };
    auto request = std::make_unique<Request>(known);
    m_pool->start(run, ++m_newest);
    return request;
}

void KeyedJobQueue::finish(const QByteArray &key, const std::shared_ptr<Job> &job, const Effects &effects)
{
    if (m_jobs.value(key) == job)
        m_jobs.remove(key);
    if (!effects)
        return;
    auto next = effects(job->requests > 0);
    if (job->requests > 0)
        job->next = std::move(next);
}

} // namespace cratewell
