#include "media/decoding/decode_pool.h"

#include "media/decoding/worker_slot.h"

#include <QPointer>
#include <QProcess>
#include <QThread>
#include <utility>

namespace cratewell {

struct DecodePool::Entry
{
    enum class Phase { Waiting, Started, Over };

    DecodeJob job;
    Phase phase = Phase::Waiting;
    int requests = 0;
    bool isSecondAttempt = false;
};

class DecodePool::Request : public PreviewRequest
{
public:
    Request(DecodePool *pool, std::shared_ptr<Entry> entry) : m_pool(pool), m_entry(std::move(entry)) {}
    ~Request() override
    {
        if (m_pool && --m_entry->requests == 0 && m_entry->phase == Entry::Phase::Waiting)
            m_pool->drop(*m_entry);
    }

private:
    QPointer<DecodePool> m_pool;
    std::shared_ptr<Entry> m_entry;
};

DecodePool::DecodePool(const Location &program, const Limits &limits) : m_limits(limits)
{
    for (int i = 0; i < limits.slots; ++i)
        m_slots.push_back(new WorkerSlot(program, this));
}

// The slots kill their workers. A killed process is gone at once, unless it hangs in a read from a dead disk:
// then it is left to the system.
DecodePool::~DecodePool()
{
    // Who waits for a job may own a request for it.
    m_waiting.clear();
    for (const auto &entry : std::exchange(m_entries, {})) {
        entry->phase = Entry::Phase::Over;
        entry->job.finished = {};
    }
    for (WorkerSlot *slot : m_slots)
        delete slot;
    for (QProcess *process : findChildren<QProcess *>()) {
        constexpr int patience = 500; // milliseconds
        if (!process->waitForFinished(patience) && process->state() != QProcess::NotRunning)
            process->setParent(nullptr);
    }
}

DecodePool::Limits DecodePool::usualLimits()
{
    return {.slots = std::max(1, QThread::idealThreadCount())};
}

std::unique_ptr<PreviewRequest> DecodePool::submit(DecodeJob job)
{
    const RequestPlace place = job.place;
    std::shared_ptr<Entry> &known = m_entries[job.key];
    if (!known)
        known = std::make_shared<Entry>(Entry{.job = std::move(job)});
    const std::shared_ptr<Entry> entry = known;
    ++entry->requests;
    if (entry->phase == Entry::Phase::Waiting) {
        m_waiting.erase(entry->job.place);
        if (!entry->isSecondAttempt)
            entry->job.place.join(place);
        m_waiting.emplace(entry->job.place, entry);
        scheduleStart();
    }
    return std::make_unique<Request>(this, entry);
}

std::vector<qint64> DecodePool::workerProcessIds() const
{
    std::vector<qint64> ids;
    for (const WorkerSlot *slot : m_slots) {
        if (const qint64 id = slot->workerProcessId())
            ids.push_back(id);
    }
    return ids;
}

void DecodePool::drop(Entry &entry)
{
    entry.phase = Entry::Phase::Over;
    m_waiting.erase(entry.job.place);
    m_entries.remove(entry.job.key);
}

// From the event loop, so that of all that one pass of it requests the highest rank begins.
void DecodePool::scheduleStart()
{
    if (m_startScheduled || m_waiting.empty())
        return;
    m_startScheduled = true;
    QMetaObject::invokeMethod(this, &DecodePool::startWaiting, Qt::QueuedConnection);
}

void DecodePool::startWaiting()
{
    m_startScheduled = false;
    for (WorkerSlot *slot : m_slots) {
        if (m_waiting.empty() || !mayStart(*m_waiting.begin()->second))
            return;
        if (!slot->isBusy())
            start(*slot, m_waiting.extract(m_waiting.begin()).mapped());
    }
}

// Second attempts leave a slot to what comes meanwhile, where there are several.
bool DecodePool::mayStart(const Entry &entry) const
{
    return !entry.isSecondAttempt || m_secondAttempts < std::max(1, m_limits.slots - 1);
}

void DecodePool::start(WorkerSlot &slot, const std::shared_ptr<Entry> &entry)
{
    entry->phase = Entry::Phase::Started;
    m_secondAttempts += entry->isSecondAttempt ? 1 : 0;
    slot.run(entry->job.request, entry->isSecondAttempt ? m_limits.longBudget : m_limits.budget,
             [this, entry](const DecodeResult &result) { finish(entry, result); });
}

void DecodePool::finish(const std::shared_ptr<Entry> &entry, const DecodeResult &result)
{
    m_secondAttempts -= entry->isSecondAttempt ? 1 : 0;
    scheduleStart();
    if (!result && result.error().fault == DecodeFailure::Fault::OutOfTime && !entry->isSecondAttempt)
        return tryAgain(entry);
    entry->phase = Entry::Phase::Over;
    m_entries.remove(entry->job.key);
    entry->job.finished(result);
}

void DecodePool::tryAgain(const std::shared_ptr<Entry> &entry)
{
    entry->isSecondAttempt = true;
    entry->job.place.rank = RequestPlace::Rank::Later;
    entry->phase = Entry::Phase::Waiting;
    m_waiting.emplace(entry->job.place, entry);
    if (entry->requests == 0)
        drop(*entry);
    scheduleStart();
}

} // namespace cratewell
