#pragma once

#include "media/decoding/shared_buffer.h"
#include "platform/location.h"

#include <QObject>
#include <QPointer>
#include <memory>

class QProcess;
class QSocketNotifier;

namespace cratewell {

// One running cratewell-worker and its end of the protocol. Main thread; nothing here waits. Destroying it
// stops the worker; what is left of the child process is then looked after by `keeper`.
class WorkerProcess : public QObject
{
    Q_OBJECT
public:
    static Result<std::unique_ptr<WorkerProcess>> start(const Location &program, QObject *keeper);
    ~WorkerProcess() override;

    // Kills the worker and is silent from then on.
    void stop();

    qint64 processId() const;
    // To be asked once it has ended.
    bool couldNotStart() const;
    // False when the worker is gone.
    [[nodiscard]] bool send(const worker::Request &request, int file) const;
    // Valid from `answered` until the next request.
    DecodeResult answer(const DecodeRequest &request, const worker::Reply &reply) const
    {
        return m_memory->answer(request, reply);
    }

Q_SIGNALS:
    void answered(const cratewell::worker::Reply &reply);
    // The worker died, could not be started, or spoke nonsense: of no more use.
    void ended();

private:
    WorkerProcess(std::unique_ptr<SharedBuffer> memory, FileDescriptor socket);
    void launch(const Location &program, int workerSocket, QObject *keeper);
    void receive();

    std::unique_ptr<SharedBuffer> m_memory;
    FileDescriptor m_socket;
    QSocketNotifier *m_notifier;
    QPointer<QProcess> m_process; // owned by the keeper
};

} // namespace cratewell
