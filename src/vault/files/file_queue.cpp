#include "vault/files/file_queue.h"

#include "vault/file_progress.h"

#include <algorithm>

namespace cratewell {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds untilShown{300};
constexpr std::chrono::milliseconds interval{100};
constexpr std::chrono::milliseconds untilGuessed{1000}; // earlier guesses of the time left jump about

FileProgress::Values valuesOf(const QString &title, const OperationProgress &progress,
                              Clock::duration elapsed)
{
    FileProgress::Values values{
        true, title, progress.filesDone, progress.filesTotal, progress.bytesDone, progress.bytesTotal, 0, -1};
    if (values.bytesTotal > 0)
        values.fraction = double(values.bytesDone) / double(values.bytesTotal);
    else if (values.filesTotal > 0)
        values.fraction = double(values.filesDone) / values.filesTotal;
    values.fraction = std::clamp(values.fraction, 0.0, 1.0);
    if (elapsed >= untilGuessed && values.fraction > 0)
        values.secondsLeft =
            int(std::chrono::duration<double>(elapsed).count() * (1 / values.fraction - 1) + 0.5);
    return values;
}

} // namespace

FileQueue::FileQueue(FileProgress &progress) : m_progress(progress)
{
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, &FileQueue::show);
    connect(&progress, &FileProgress::cancelWanted, this, &FileQueue::cancel);
}

// Effects are for drain(): who owns the queue may be half gone by now.
FileQueue::~FileQueue()
{
    stop();
}

void FileQueue::add(const QString &title, Work work, const Location &destination)
{
    auto job = std::make_shared<Job>();
    job->title = title;
    job->work = std::move(work);
    job->destination = destination;
    job->started = Clock::now();
    {
        const std::scoped_lock lock(m_mutex);
        if (m_ending)
            return;
        m_jobs.push_back(std::move(job));
    }
    if (!m_thread.joinable())
        m_thread = std::thread([this] { run(); });
    m_changed.notify_one();
    m_timer.start();
}

void FileQueue::cancel()
{
    const std::scoped_lock lock(m_mutex);
    if (!m_jobs.empty())
        m_jobs.front()->progress.canceled = true;
}

void FileQueue::cancelFilling(const Location &folder)
{
    const std::scoped_lock lock(m_mutex);
    for (const auto &job : m_jobs) {
        if (job->destination == folder || job->destination.isInside(folder))
            job->progress.canceled = true;
    }
}

void FileQueue::cancelAll()
{
    const std::scoped_lock lock(m_mutex);
    for (const auto &job : m_jobs)
        job->progress.canceled = true;
}

void FileQueue::drain()
{
    stop();
    deliver();
}

void FileQueue::stop()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_ending = true;
        if (!m_jobs.empty())
            m_jobs.front()->progress.canceled = true;
    }
    m_changed.notify_one();
    if (m_thread.joinable())
        m_thread.join();
    m_timer.stop();
}

void FileQueue::run()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_ending || !m_jobs.empty(); });
        if (m_ending)
            return;
        const std::shared_ptr<Job> job = m_jobs.front();
        job->started = Clock::now();
        lock.unlock();
        Effects effects = job->work(job->progress);
        lock.lock();
        m_jobs.pop_front();
        m_finished.push_back(std::move(effects));
        QMetaObject::invokeMethod(this, &FileQueue::deliver, Qt::QueuedConnection);
    }
}

void FileQueue::deliver()
{
    std::vector<Effects> finished;
    {
        const std::scoped_lock lock(m_mutex);
        finished = std::exchange(m_finished, {});
    }
    if (finished.empty())
        return;
    show();
    for (const Effects &effects : finished) {
        if (effects)
            effects();
    }
}

void FileQueue::show()
{
    FileProgress::Values values;
    {
        const std::scoped_lock lock(m_mutex);
        if (m_jobs.empty()) {
            m_timer.stop();
        } else {
            const Job &job = *m_jobs.front();
            const Clock::duration elapsed = Clock::now() - job.started;
            if (elapsed >= untilShown)
                values = valuesOf(job.title, job.progress, elapsed);
        }
    }
    m_progress.show(values);
}

} // namespace cratewell
