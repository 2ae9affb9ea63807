#pragma once

#include "media/preview_request.h"

#include <QHash>
#include <QObject>
#include <QThreadPool>
#include <functional>
#include <memory>

namespace cratewell {

// Lets the pool finish what it has begun; a pool whose work hangs, say in a disk that has gone away, is left
// behind after a second. What it runs must own what it touches.
void endOrAbandon(std::unique_ptr<QThreadPool> pool);

// Work for previews on threads of this process, newest first. Two jobs of one key are the same work: the
// second joins the first, also while that runs. A job that nobody waits for any more when its turn comes is
// dropped. Main thread.
class KeyedJobQueue : public QObject
{
public:
    // What is to be done on the main thread afterwards. `wanted` tells whether somebody still waits; what is
    // returned then lives as long as they do.
    using Effects = std::function<std::unique_ptr<PreviewRequest>(bool wanted)>;
    // Any thread. Must own what it touches.
    using Work = std::function<Effects()>;

    explicit KeyedJobQueue(int threads);
    // Nothing has its effects any more.
    ~KeyedJobQueue() override;

    [[nodiscard]] std::unique_ptr<PreviewRequest> submit(const QByteArray &key, Work work);

private:
    struct Job;
    class Request;
    struct Mailbox;

    void finish(const QByteArray &key, const std::shared_ptr<Job> &job, const Effects &effects);

    std::unique_ptr<QThreadPool> m_pool;
    std::shared_ptr<Mailbox> m_mailbox;
    QHash<QByteArray, std::shared_ptr<Job>> m_jobs; // waiting and running
    int m_newest = 0;
};

} // namespace cratewell
