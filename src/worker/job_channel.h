#pragma once

#include "worker/protocol.h"

#include <chrono>
#include <memory>

namespace cratewell::worker {

// A request with the file that came with it; closes the file.
class ReceivedJob
{
public:
    ReceivedJob(const Request &request, int file) : m_request(request), m_file(file) {}
    ~ReceivedJob();
    ReceivedJob(const ReceivedJob &) = delete;
    ReceivedJob &operator=(const ReceivedJob &) = delete;

    const Request &request() const { return m_request; }
    int file() const { return m_file; } // -1 when none came

private:
    Request m_request;
    int m_file;
};

// The helper's side of the socket. The descriptor is borrowed.
class JobChannel
{
public:
    explicit JobChannel(int socket) : m_socket(socket) {}

    // True when something arrived within this time, the end of the socket included.
    bool wait(std::chrono::milliseconds time) const;
    // Blocks; nothing when the program is gone or speaks nonsense.
    std::unique_ptr<ReceivedJob> receive() const;
    // False when the program is gone.
    [[nodiscard]] bool send(const Reply &reply) const;

private:
    int m_socket;
};

} // namespace cratewell::worker
