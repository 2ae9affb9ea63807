#include "media/decoding/worker_process.h"

#include "platform/posix/file_descriptor.h"

#include <QFile>
#include <QProcess>
#include <QSocketNotifier>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace cratewell {

namespace {

// Between fork and exec: only calls that are safe there. The copies above 9 keep one of the two descriptors
// from being overwritten by the other.
void inheritOnly(int socket, int memory)
{
    const int socketCopy = fcntl(socket, F_DUPFD, 10), memoryCopy = fcntl(memory, F_DUPFD, 10);
    dup2(socketCopy, worker::socketDescriptor);
    dup2(memoryCopy, worker::memoryDescriptor);
    closeOnExecFrom(worker::memoryDescriptor + 1);
}

} // namespace

Result<std::unique_ptr<WorkerProcess>> WorkerProcess::start(const Location &program, QObject *keeper)
{
    auto memory = SharedBuffer::create();
    if (!memory)
        return tl::unexpected(memory.error());
    int pair[2] = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, pair) != 0)
        return systemFailure(errno);
    const FileDescriptor workerSocket(pair[1]);
    std::unique_ptr<WorkerProcess> process(new WorkerProcess(std::move(*memory), FileDescriptor(pair[0])));
    process->launch(program, workerSocket.number(), keeper);
    return process;
}

WorkerProcess::WorkerProcess(std::unique_ptr<SharedBuffer> memory, FileDescriptor socket)
    : m_memory(std::move(memory)), m_socket(std::move(socket)),
      m_notifier(new QSocketNotifier(m_socket.number(), QSocketNotifier::Read, this))
{
    connect(m_notifier, &QSocketNotifier::activated, this, &WorkerProcess::receive);
}

WorkerProcess::~WorkerProcess()
{
    stop();
}

void WorkerProcess::stop()
{
    m_notifier->setEnabled(false);
    if (!m_process)
        return;
    if (m_process->state() == QProcess::NotRunning)
        m_process->deleteLater();
    else
        m_process->kill();
    m_process.clear();
}

void WorkerProcess::launch(const Location &program, int workerSocket, QObject *keeper)
{
    m_process = new QProcess(keeper);
    connect(m_process, &QProcess::finished, m_process, &QObject::deleteLater);
    m_process->setProgram(QFile::decodeName(program.bytes()));
    m_process->setStandardInputFile(QProcess::nullDevice());
    m_process->setStandardOutputFile(QProcess::nullDevice());
#if defined(CRATEWELL_SANITIZED)
    m_process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
#else
    m_process->setStandardErrorFile(QProcess::nullDevice());
#endif
    const int memory = m_memory->descriptor();
    m_process->setChildProcessModifier([workerSocket, memory] { inheritOnly(workerSocket, memory); });
    m_process->start();
}

qint64 WorkerProcess::processId() const
{
    return m_process ? m_process->processId() : 0;
}

bool WorkerProcess::couldNotStart() const
{
    // The news may have come in, but not been looked at yet.
    return m_process && !m_process->waitForStarted(0) && m_process->error() == QProcess::FailedToStart;
}

bool WorkerProcess::send(const worker::Request &request, int file) const
{
    iovec part{.iov_base = const_cast<worker::Request *>(&request), .iov_len = sizeof request};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof file)] = {};
    msghdr message = {};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    cmsghdr *header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(sizeof file);
    std::memcpy(CMSG_DATA(header), &file, sizeof file);
    return sendmsg(m_socket.number(), &message, MSG_NOSIGNAL | MSG_DONTWAIT) == ssize_t(sizeof request);
}

void WorkerProcess::receive()
{
    worker::Reply reply;
    const ssize_t got = recv(m_socket.number(), &reply, sizeof reply, MSG_DONTWAIT);
    if (got < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (got == ssize_t(sizeof reply)) {
        Q_EMIT answered(reply);
        return;
    }
    m_notifier->setEnabled(false);
    Q_EMIT ended();
}

} // namespace cratewell
