#pragma once

#include "media/preview_request.h"

#include <QHash>
#include <QObject>
#include <QThreadPool>
#include <functional>
#include <memory>

namespace cratewell {

// Work for previews on threads of this process, newest first. Two jobs of one key are the same work: the
// second joins the first. A job that nobody waits for any more when its turn comes is dropped. Main thread.
class ThreadJobs : public QObject
{
public:
    // What is to be done on the main thread afterwards. `wanted` tells whether somebody still waits; what is
    // returned then lives as long as they do.
    using Effects = std::function<std::unique_ptr<PreviewRequest>(bool wanted)>;
    // Any thread.
    using Work = std::function<Effects()>;

    explicit ThreadJobs(int threads);
    // Waits for what has started; nothing has its effects any more.
    ~ThreadJobs() override;

    [[nodiscard]] std::unique_ptr<PreviewRequest> submit(const QByteArray &key, Work work);

private:
    struct Ticket
    {
        std::unique_ptr<PreviewRequest> next;
    };
    class Request;

    QThreadPool m_pool;
    QHash<QByteArray, std::weak_ptr<Ticket>> m_tickets; // of the jobs that have not had their effects
    int m_newest = 0;
};

} // namespace cratewell
