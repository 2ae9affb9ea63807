#pragma once

#include "media/decoding/decode_request.h"
#include "media/decoding/file_opener.h"

#include <QFutureWatcher>
#include <QTimer>
#include <chrono>
#include <functional>
#include <memory>

namespace cratewell {

class WorkerProcess;

// Does one job after the other with a worker process of its own, which is started for the first job and
// stays. A worker that dies, hangs over the time budget or answers nonsense costs the job it had; the next
// job gets a new one. Main thread; never blocks.
class WorkerSlot : public QObject
{
    Q_OBJECT
public:
    using Finished = std::function<void(const DecodeResult &)>;

    WorkerSlot(Location program, QObject *parent);
    ~WorkerSlot() override;

    bool isBusy() const { return m_phase != Phase::Idle; }
    // Only while it is not busy. `finished` is called exactly once, never from within this call and not later
    // than after `budget`; the slot is free again then, and the file closed. It is not called after the
    // slot's end.
    void run(const DecodeRequest &request, std::chrono::milliseconds budget, Finished finished);
    // 0 while there is none.
    qint64 workerProcessId() const;

private:
    enum class Phase { Idle, Opening, Decoding };

    void startDecoding();
    Result<void> hand(int file);
    Result<void> ensureWorker();
    void dropWorker();
    void takeAnswer(const worker::Reply &reply);
    void workerEnded();
    void runOutOfTime();
    void finish(const DecodeResult &result);

    Location m_program;
    DecodeRequest m_request;
    Finished m_finished;
    Phase m_phase = Phase::Idle;
    quint64 m_job = 0;
    QTimer m_budget;
    QFutureWatcher<OpenedFile> m_opening;
    std::unique_ptr<WorkerProcess> m_worker;
};

} // namespace cratewell
