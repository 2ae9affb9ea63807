#pragma once

#include "media/preview_request.h"
#include "media/request_order.h"

#include <QHash>
#include <QObject>
#include <QThreadPool>
#include <functional>
#include <memory>

namespace cratewell {

// Lets the pool finish what it has begun; a pool whose work hangs, say in a disk that has gone away, is left
// behind after a second. What it runs must own what it touches.
void endOrAbandon(std::unique_ptr<QThreadPool> pool);

// Work for previews on threads of this process, in the order of its places. Two jobs of one key are the same
// work: the second joins the first, also while that runs. A job that has not begun ends with its last
// request. Main thread.
class KeyedJobQueue : public QObject
{
public:
    // What is to be done on the main thread afterwards. `wanted` says whether somebody still waits; what is
    // returned then lives as long as they do.
    using Effects = std::function<std::unique_ptr<PreviewRequest>(bool wanted)>;
    // Any thread. Must own what it touches.
    using Work = std::function<Effects()>;

    explicit KeyedJobQueue(int threads);
    // Nothing has its effects any more.
    ~KeyedJobQueue() override;

    [[nodiscard]] std::unique_ptr<PreviewRequest> submit(const QByteArray &key, const RequestPlace &place,
                                                         Work work);

private:
    struct Job;
    class Request;
    struct Shared;

    void finish(const std::shared_ptr<Job> &job, const Effects &effects);

    std::unique_ptr<QThreadPool> m_pool;
    std::shared_ptr<Shared> m_shared;
    QHash<QByteArray, std::shared_ptr<Job>> m_jobs; // waiting and running
};

} // namespace cratewell
