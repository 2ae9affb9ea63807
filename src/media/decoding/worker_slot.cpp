#include "media/decoding/worker_slot.h"

#include "media/decoding/worker_process.h"

#include <cstring>
#include <utility>

namespace cratewell {

using namespace Qt::StringLiterals;

WorkerSlot::WorkerSlot(Location program, QObject *parent) : QObject(parent), m_program(std::move(program))
{
    m_budget.setSingleShot(true);
    connect(&m_budget, &QTimer::timeout, this, &WorkerSlot::runOutOfTime);
    connect(&m_opening, &QFutureWatcherBase::finished, this, &WorkerSlot::startDecoding);
}

WorkerSlot::~WorkerSlot() = default;

void WorkerSlot::run(const DecodeRequest &request, std::chrono::milliseconds budget, Finished finished)
{
    Q_ASSERT(!isBusy());
    m_request = request;
    m_finished = std::move(finished);
    m_phase = Phase::Opening;
    ++m_job;
    m_budget.start(budget);
    m_opening.setFuture(openForReading(request.file));
}

qint64 WorkerSlot::workerProcessId() const
{
    return m_worker ? m_worker->processId() : 0;
}

void WorkerSlot::startDecoding()
{
    if (m_phase != Phase::Opening)
        return;
    const OpenedFile opened = m_opening.future().takeResult();
    if (!opened)
        return finish(tl::unexpected(opened.error()));
    m_phase = Phase::Decoding;
    if (const auto handed = hand(opened->number()); !handed)
        finish(tl::unexpected(DecodeFailure(handed.error(), DecodeFailure::Fault::OfSystem)));
}

// A worker may have died while it had nothing to do; that is no fault of the job that meets it.
Result<void> WorkerSlot::hand(int file)
{
    worker::Request request;
    request.job = m_job;
    request.kind = m_request.kind;
    request.maxSide = m_request.maxSide;
    request.count = m_request.count;
    request.fraction = m_request.fraction;
    // For a worker that nobody could end by the clock.
    constexpr std::chrono::seconds margin(5);
    const auto budget = std::chrono::duration_cast<std::chrono::seconds>(m_budget.intervalAsDuration());
    request.processorSeconds = int32_t((budget + margin).count());
    for (int attempt = 0; attempt < 2; ++attempt) {
        if (const auto worker = ensureWorker(); !worker)
            return worker;
        if (m_worker->send(request, file))
            return {};
        dropWorker();
    }
    return tl::unexpected(Error{u"The decoder could not be reached"_s});
}

Result<void> WorkerSlot::ensureWorker()
{
    if (m_worker)
        return {};
    auto started = WorkerProcess::start(m_program, parent());
    if (!started)
        return tl::unexpected(started.error());
    m_worker = std::move(*started);
    connect(m_worker.get(), &WorkerProcess::answered, this, &WorkerSlot::takeAnswer);
    connect(m_worker.get(), &WorkerProcess::ended, this, &WorkerSlot::workerEnded);
    return {};
}

// Deleted later, because the worker may be the one that is calling.
void WorkerSlot::dropWorker()
{
    if (!m_worker)
        return;
    m_worker->disconnect(this);
    m_worker->stop();
    m_worker.release()->deleteLater();
}

void WorkerSlot::takeAnswer(const worker::Reply &reply)
{
    if (m_phase != Phase::Decoding || reply.job != m_job) {
        dropWorker();
        if (m_phase == Phase::Decoding)
            finish(tl::unexpected(DecodeFailure(Error{u"The decoder answered another question"_s})));
        return;
    }
    if (reply.status != worker::JobStatus::Done) {
        const auto length = qsizetype(strnlen(reply.error, sizeof reply.error));
        return finish(tl::unexpected(DecodeFailure(Error{QString::fromUtf8(reply.error, length)})));
    }
    const DecodeResult result = m_worker->answer(m_request, reply);
    if (!result)
        dropWorker();
    finish(result);
}

void WorkerSlot::workerEnded()
{
    using Fault = DecodeFailure::Fault;
    const bool neverRan = m_worker->couldNotStart();
    dropWorker();
    if (m_phase != Phase::Decoding)
        return;
    finish(tl::unexpected(neverRan
                              ? DecodeFailure(Error{u"The decoder could not be started"_s}, Fault::OfSystem)
                              : DecodeFailure(Error{u"The decoder ended over this file"_s})));
}

void WorkerSlot::runOutOfTime()
{
    using Fault = DecodeFailure::Fault;
    const Fault fault = m_phase == Phase::Decoding ? Fault::OutOfTime : Fault::OfSystem;
    if (m_phase == Phase::Decoding)
        dropWorker();
    else
        m_opening.setFuture({});
    finish(tl::unexpected(DecodeFailure(Error{u"It took too long"_s}, fault)));
}

void WorkerSlot::finish(const DecodeResult &result)
{
    m_phase = Phase::Idle;
    m_budget.stop();
    const Finished notify = std::exchange(m_finished, {});
    notify(result);
}

} // namespace cratewell
