#include "worker/job_channel.h"

#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace cratewell::worker {

ReceivedJob::~ReceivedJob()
{
    if (m_file >= 0)
        close(m_file);
}

bool JobChannel::wait(std::chrono::milliseconds time) const
{
    pollfd poller{.fd = m_socket, .events = POLLIN, .revents = 0};
    return poll(&poller, 1, int(time.count())) != 0;
}

std::unique_ptr<ReceivedJob> JobChannel::receive() const
{
    Request request;
    iovec part{.iov_base = &request, .iov_len = sizeof request};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
    msghdr message = {};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;

    ssize_t got = 0;
    do
        got = recvmsg(m_socket, &message, MSG_CMSG_CLOEXEC);
    while (got < 0 && errno == EINTR);
    if (got != ssize_t(sizeof request))
        return nullptr;

    int file = -1;
    const cmsghdr *header = CMSG_FIRSTHDR(&message);
    if (header && header->cmsg_level == SOL_SOCKET && header->cmsg_type == SCM_RIGHTS)
        std::memcpy(&file, CMSG_DATA(header), sizeof file);
    return std::make_unique<ReceivedJob>(request, file);
}

bool JobChannel::send(const Reply &reply) const
{
    ssize_t sent = 0;
    do
        sent = ::send(m_socket, &reply, sizeof reply, MSG_NOSIGNAL);
    while (sent < 0 && errno == EINTR);
    return sent == ssize_t(sizeof reply);
}

} // namespace cratewell::worker
