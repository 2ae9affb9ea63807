#pragma once

#include "media/decoding/decode_request.h"
#include "media/media.h"

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
// the first is what is called, once; its rank is the highest asked for. It is not called for a job that was
// dropped, nor after the pool's end.
struct DecodeJob
{
    // What the pointer is on comes before everything that merely is on screen.
    enum class Rank { Usual, Interactive };

    QByteArray key;
    DecodeRequest request;
    Rank rank = Rank::Usual;
    std::function<void(const DecodeResult &)> finished;
};

// Spreads jobs over slots: the highest rank first, and of one rank the newest. Main thread. `finished` is
// called from the event loop, never from within submit().
class DecodePool : public QObject
{
    Q_OBJECT
public:
    struct Limits
    {
        int slots = 1;
        std::chrono::milliseconds budget = std::chrono::seconds(15); // wall-clock time of a job
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
    void finish(const QByteArray &key, const DecodeResult &result);

    std::vector<WorkerSlot *> m_slots;
    QHash<QByteArray, std::shared_ptr<Entry>> m_entries;
    // By rank, then by the time of the newest request: the last is the next.
    std::map<std::pair<DecodeJob::Rank, quint64>, std::shared_ptr<Entry>> m_waiting;
    quint64 m_clock = 0;
    bool m_startScheduled = false;
};

} // namespace cratewell
