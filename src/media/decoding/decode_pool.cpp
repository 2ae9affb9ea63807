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
    std::pair<DecodeJob::Rank, quint64> place = {}; // among the waiting
};

class DecodePool::Request : public PreviewRequest
{
public:
    Request(DecodePool *pool, std::shared_ptr<Entry> entry) : m_pool(pool), m_entry(std::move(entry)) {}
    ~Request() override
    {
        if (m_pool)
            m_pool->drop(*m_entry);
    }

private:
    QPointer<DecodePool> m_pool;
    std::shared_ptr<Entry> m_entry;
};

DecodePool::DecodePool(const Location &program, const Limits &limits)
{
    for (int i = 0; i < limits.slots; ++i)
        m_slots.push_back(new WorkerSlot(program, limits.budget, this));
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
    const DecodeJob::Rank rank = job.rank;
    std::shared_ptr<Entry> &known = m_entries[job.key];
    if (!known)
        known = std::make_shared<Entry>(Entry{.job = std::move(job)});
    const std::shared_ptr<Entry> entry = known;
    ++entry->requests;
    if (entry->phase == Entry::Phase::Waiting) {
        m_waiting.erase(entry->place);
        entry->place = {std::max(entry->place.first, rank), ++m_clock};
        m_waiting.emplace(entry->place, entry);
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
    if (--entry.requests > 0 || entry.phase != Entry::Phase::Waiting)
        return;
    entry.phase = Entry::Phase::Over;
    m_waiting.erase(entry.place);
    m_entries.remove(entry.job.key);
}

// From the event loop, so that of all that one pass of it asks for the newest begins.
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
        if (m_waiting.empty())
            return;
        if (slot->isBusy())
            continue;
        const auto newest = std::prev(m_waiting.end());
        const std::shared_ptr<Entry> entry = newest->second;
        m_waiting.erase(newest);
        entry->phase = Entry::Phase::Started;
        slot->run(entry->job.request,
                  [this, key = entry->job.key](const DecodeResult &result) { finish(key, result); });
    }
}

void DecodePool::finish(const QByteArray &key, const DecodeResult &result)
{
    const std::shared_ptr<Entry> entry = m_entries.take(key);
    entry->phase = Entry::Phase::Over;
    scheduleStart();
    entry->job.finished(result);
}

} // namespace cratewell
