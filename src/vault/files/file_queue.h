#pragma once

#include "platform/location.h"
#include "vault/files/operation_progress.h"

#include <QObject>
#include <QTimer>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace cratewell {

class FileProgress;

// The thread that changes files: one piece of work at a time, in the order given. Lives on the main thread
// and shows there how far long work has come.
class FileQueue : public QObject
{
public:
    // What is to be done on the main thread afterwards.
    using Effects = std::function<void()>;
    using Work = std::function<Effects(OperationProgress &)>;

    explicit FileQueue(FileProgress &progress);
    ~FileQueue() override;

    // `work` runs on the file thread, what it returns on the main thread, no later than in drain().
    // `destination` is the folder that long work fills, if there is one.
    void add(const QString &title, Work work, const Location &destination = {});
    // Cancels what is under way.
    void cancel();
    // Cancels, under way or waiting, what fills this folder or one inside it.
    void cancelFilling(const Location &folder);
    // Cancels what is under way and what waits; each still has its effects.
    void cancelAll();
    // Cancels what is under way, drops what waits and returns when the file thread has ended and the effects
    // of what was done have been had. Nothing is taken on afterwards.
    void drain();

private:
    struct Job
    {
        QString title;
        Work work;
        Location destination;
        OperationProgress progress;
        std::chrono::steady_clock::time_point started;
    };

    void run();
    void stop();
    void deliver();
    void show();

    FileProgress &m_progress;
    QTimer m_timer;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::shared_ptr<Job>> m_jobs; // the first is under way
    std::vector<Effects> m_finished;
    bool m_ending = false;
    std::thread m_thread;
};

} // namespace cratewell
