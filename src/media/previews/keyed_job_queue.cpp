#include "media/previews/keyed_job_queue.h"

#include <map>
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
    QByteArray key;
    Work work;
    RequestPlace place;                   // guarded by the mutex
    int requests = 0;                     // main thread
    std::unique_ptr<PreviewRequest> next; // main thread
};

// What the threads, which may outlive the owner, share with it.
struct KeyedJobQueue::Shared
{
    std::mutex mutex;
    KeyedJobQueue *owner = nullptr;
    std::map<RequestPlace, std::shared_ptr<Job>> waiting;

    // Null when everything was withdrawn meanwhile.
    std::shared_ptr<Job> takeNext()
    {
        const std::scoped_lock lock(mutex);
        return waiting.empty() ? nullptr : waiting.extract(waiting.begin()).mapped();
    }
    void raise(const std::shared_ptr<Job> &job, const RequestPlace &place)
    {
        const std::scoped_lock lock(mutex);
        if (waiting.erase(job->place) == 0)
            return;
        job->place.join(place);
        waiting.emplace(job->place, job);
    }
    bool withdraw(const Job &job)
    {
        const std::scoped_lock lock(mutex);
        return waiting.erase(job.place) != 0;
    }
};

class KeyedJobQueue::Request : public PreviewRequest
{
public:
    Request(std::shared_ptr<Job> job, std::shared_ptr<Shared> shared)
        : m_job(std::move(job)), m_shared(std::move(shared))
    {
        ++m_job->requests;
    }
    ~Request() override
    {
        if (--m_job->requests > 0)
            return;
        m_job->next.reset();
        if (m_shared->withdraw(*m_job))
            m_shared->owner->m_jobs.remove(m_job->key);
    }

private:
    std::shared_ptr<Job> m_job;
    std::shared_ptr<Shared> m_shared;
};

KeyedJobQueue::KeyedJobQueue(int threads)
    : m_pool(std::make_unique<QThreadPool>()), m_shared(std::make_shared<Shared>())
{
    m_pool->setMaxThreadCount(threads);
    m_shared->owner = this;
}

KeyedJobQueue::~KeyedJobQueue()
{
    {
        const std::scoped_lock lock(m_shared->mutex);
        m_shared->owner = nullptr;
        m_shared->waiting.clear();
    }
    m_pool->clear();
    endOrAbandon(std::move(m_pool));
}

std::unique_ptr<PreviewRequest> KeyedJobQueue::submit(const QByteArray &key, const RequestPlace &place,
                                                      Work work)
{
    std::shared_ptr<Job> &known = m_jobs[key];
    if (known) {
        m_shared->raise(known, place);
        return std::make_unique<Request>(known, m_shared);
    }
    known = std::make_shared<Job>();
    known->key = key;
    known->work = std::move(work);
    known->place = place;
    auto request = std::make_unique<Request>(known, m_shared);
    {
        const std::scoped_lock lock(m_shared->mutex);
        m_shared->waiting.emplace(place, known);
    }
    m_pool->start([shared = m_shared] {
        const std::shared_ptr<Job> job = shared->takeNext();
        if (!job)
            return;
        Effects effects = job->work();
        const std::scoped_lock lock(shared->mutex);
        if (KeyedJobQueue *owner = shared->owner)
            QMetaObject::invokeMethod(
                owner, [owner, job, effects = std::move(effects)] { owner->finish(job, effects); },
                Qt::QueuedConnection);
    });
    return request;
}

void KeyedJobQueue::finish(const std::shared_ptr<Job> &job, const Effects &effects)
{
    m_jobs.remove(job->key);
    auto next = effects(job->requests > 0);
    if (job->requests > 0)
        job->next = std::move(next);
}

} // namespace cratewell
