#include "platform/termination_signals.h"

#include <QSocketNotifier>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace cratewell {

namespace {

constexpr std::array caught = {SIGTERM, SIGINT, SIGHUP};
std::atomic<int> noticeEnd = -1;
static_assert(std::atomic<int>::is_always_lock_free);

void notice(int)
{
    const int error = errno;
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(noticeEnd, &byte, 1);
    errno = error;
}

} // namespace

struct TerminationSignals::Private
{
    std::array<int, 2> pipe = {-1, -1};
    std::array<struct sigaction, caught.size()> former{};
    std::unique_ptr<QSocketNotifier> notifier;
};

TerminationSignals::TerminationSignals() : d(std::make_unique<Private>())
{
    if (::pipe(d->pipe.data()) != 0)
        return;
    for (const int end : d->pipe) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    noticeEnd = d->pipe[1];
    d->notifier = std::make_unique<QSocketNotifier>(d->pipe[0], QSocketNotifier::Read);
    connect(d->notifier.get(), &QSocketNotifier::activated, this, [this] {
        std::array<char, 16> bytes;
        while (::read(d->pipe[0], bytes.data(), bytes.size()) > 0) {
        }
        Q_EMIT terminationRequested();
    });
    struct sigaction action = {};
    action.sa_handler = notice;
    action.sa_flags = SA_RESTART | int(SA_RESETHAND);
    for (size_t i = 0; i < caught.size(); ++i)
        ::sigaction(caught[i], &action, &d->former[i]);
}

TerminationSignals::~TerminationSignals()
{
    if (!d->notifier)
        return;
    for (size_t i = 0; i < caught.size(); ++i)
        ::sigaction(caught[i], &d->former[i], nullptr);
    noticeEnd = -1;
    d->notifier.reset();
    ::close(d->pipe[0]);
    ::close(d->pipe[1]);
}

} // namespace cratewell
