#pragma once

#include "media/decoding/decode_request.h"
#include "media/preview_request.h"
#include "media/request_order.h"

#include <QHash>
#include <QObject>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace cratewell {

class WorkerSlot;

// A job for the workers. Two jobs of one key are the same work: the second joins the first, and `finished` of
// the first is what is called, once. It is not called for a job that was dropped, nor after the pool's end.
struct DecodeJob
{
    QByteArray key;
    DecodeRequest request;
    RequestPlace place; // no two jobs have the same
    std::function<void(const DecodeResult &)> finished;
};

// Spreads jobs over slots in the order of their places. A job that takes too long is done once more when
// nothing else waits, with more time. Main thread. `finished` is called from the event loop, never from
// within submit().
class DecodePool : public QObject
{
    Q_OBJECT
public:
    struct Limits
    {
        int slots = 1;
        // By the clock, for a job and for its second attempt.
        std::chrono::milliseconds budget = std::chrono::seconds(15);
        std::chrono::milliseconds longBudget = std::chrono::seconds(60);
    };

    DecodePool(const Location &program, const Limits &limits);
    ~DecodePool() override;

    // One slot for each core of this machine.
    static Limits usualLimits();

    // The job is dropped when all requests for it are gone before it has started; a started one is done.
    [[nodiscard]] std::unique_ptr<PreviewRequest> submit(DecodeJob job);

    // Of the workers that run now.
    std::vector<qint64> workerProcessIds() const;

private:
    class Request;
    struct Entry;

    void drop(Entry &entry);
    void scheduleStart();
    void startWaiting();
    void start(WorkerSlot &slot, const std::shared_ptr<Entry> &entry);
    void finish(const std::shared_ptr<Entry> &entry, const DecodeResult &result);
    bool mayStart(const Entry &entry) const;
    void tryAgain(const std::shared_ptr<Entry> &entry);

    Limits m_limits;
    std::vector<WorkerSlot *> m_slots;
    QHash<QByteArray, std::shared_ptr<Entry>> m_entries;
    std::map<RequestPlace, std::shared_ptr<Entry>> m_waiting;
    int m_secondAttempts = 0; // that are under way
    bool m_startScheduled = false;
};

} // namespace cratewell
