#include "platform/linux/inotify_file_events.h"

#include "platform/internal/change_throttle.h"
#include "platform/linux/inotify_tree.h"

#include <array>
#include <mutex>
#include <poll.h>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>

namespace cratewell {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds checkInterval(2);
// Checks take at most this part of the thread's time, however large the vault is.
constexpr int checkShare = 20;

} // namespace

class InotifyFileEvents::Private
{
public:
    explicit Private(InotifyFileEvents &owner) : q(owner), throttle([&owner] { Q_EMIT owner.changed(); }) {}

    struct Request
    {
        Location root;
        std::vector<QByteArray> entries;
        Time since;
        quint64 generation = 0;
    };
    void request(Request next);
    void finish();

    InotifyFileEvents &q;
    ChangeThrottle throttle;
    quint64 generation = 0;

private:
    void run();
    void takeRequest(InotifyTree &tree);
    void wait(const InotifyTree &tree);
    void report(bool changed, const InotifyTree &tree);
    void noticeChange();

    std::thread m_thread;
    const int m_wake = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    std::mutex m_mutex;
    std::optional<Request> m_request;
    std::atomic<bool> m_interrupted = false;
    std::atomic<bool> m_quit = false;

    // The thread's own; the generation is 0 while nothing is followed.
    quint64 m_followed = 0;
    bool m_limitPosted = false;
    Clock::time_point m_nextCheck;

    // The generation that last saw a change, and whether the main thread has yet to notice one.
    std::atomic<quint64> m_changed = 0;
    std::atomic<bool> m_posted = false;
};

void InotifyFileEvents::Private::request(Request next)
{
    throttle.reset();
    next.generation = ++generation;
    const bool needsThread = !next.root.isEmpty();
    {
        const std::lock_guard lock(m_mutex);
        m_request = std::move(next);
        m_interrupted = true;
    }
    ::eventfd_write(m_wake, 1);
    if (!m_thread.joinable() && needsThread)
        m_thread = std::thread([this] { run(); });
}

void InotifyFileEvents::Private::finish()
{
    {
        const std::lock_guard lock(m_mutex);
        m_quit = true;
        m_interrupted = true;
    }
    ::eventfd_write(m_wake, 1);
    if (m_thread.joinable())
        m_thread.join();
    ::close(m_wake);
}

void InotifyFileEvents::Private::run()
{
    InotifyTree tree(m_interrupted);
    while (!m_quit) {
        takeRequest(tree);
        wait(tree);
        if (m_quit || m_interrupted)
            continue;
        bool changed = tree.descriptor() >= 0 && tree.read();
        if (Clock::now() >= m_nextCheck) {
            const Clock::time_point start = Clock::now();
            changed |= tree.check();
            m_nextCheck =
                Clock::now() + std::max<Clock::duration>(checkInterval, (Clock::now() - start) * checkShare);
        }
        report(changed, tree);
    }
}

void InotifyFileEvents::Private::takeRequest(InotifyTree &tree)
{
    std::optional<Request> taken;
    {
        const std::lock_guard lock(m_mutex);
        taken = std::exchange(m_request, {});
        m_interrupted = m_quit.load();
    }
    if (!taken)
        return;
    m_followed = taken->root.isEmpty() ? 0 : taken->generation;
    const bool changed = tree.follow(taken->root, taken->entries, taken->since);
    m_nextCheck = Clock::now() + checkInterval;
    report(changed, tree);
}

void InotifyFileEvents::Private::wait(const InotifyTree &tree)
{
    std::array<pollfd, 2> sources = {pollfd{m_wake, POLLIN, 0}, pollfd{tree.descriptor(), POLLIN, 0}};
    const auto rest = std::chrono::ceil<std::chrono::milliseconds>(m_nextCheck - Clock::now());
    const int timeout = m_followed == 0 ? -1 : int(std::max<qint64>(rest.count(), 0));
    ::poll(sources.data(), sources.size(), timeout);
    eventfd_t ignored = 0;
    ::eventfd_read(m_wake, &ignored);
}

void InotifyFileEvents::Private::report(bool changed, const InotifyTree &tree)
{
    if (tree.limitReached() && !std::exchange(m_limitPosted, true))
        QMetaObject::invokeMethod(
            &q, [this] { Q_EMIT q.limitReached(); }, Qt::QueuedConnection);
    if (!changed)
        return;
    m_changed = m_followed;
    if (!m_posted.exchange(true))
        QMetaObject::invokeMethod(
            &q, [this] { noticeChange(); }, Qt::QueuedConnection);
}

void InotifyFileEvents::Private::noticeChange()
{
    m_posted = false;
    if (m_changed == generation)
        throttle.notice();
}

InotifyFileEvents::InotifyFileEvents() : d(std::make_unique<Private>(*this)) {}

InotifyFileEvents::~InotifyFileEvents()
{
    d->finish();
}

void InotifyFileEvents::watch(const Location &root, const std::vector<QByteArray> &entries, Time since)
{
    d->request({root, entries, since});
}

void InotifyFileEvents::stop()
{
    d->request({});
}

} // namespace cratewell
