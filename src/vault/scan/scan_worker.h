#pragma once

#include "vault/vault_snapshot.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace cratewell {

// The thread that scans. Its owner asks from one thread and keeps at most one scan under way.
class ScanWorker
{
public:
    // `finished` is called on the worker's thread when a result is ready.
    explicit ScanWorker(std::function<void()> finished);
    // Breaks off a scan under way and waits for the thread.
    ~ScanWorker();

    void start(const Location &root, std::shared_ptr<const VaultSnapshot> before);
    // The scan under way ends soon, with no result.
    void cancel();
    struct Result
    {
        SnapshotDiff diff;
        bool complete = true; // as in ScanResult
    };
    // Nothing when the scan was canceled. Called once for each start, after `finished`.
    std::optional<Result> takeResult();
    // Frees snapshots on the worker's thread: the last owner of a hundred thousand assets takes a while.
    void release(SnapshotDiff diff);

private:
    struct Request
    {
        Location root;
        std::shared_ptr<const VaultSnapshot> before;
    };

    void work();
    void scan(Request request);

    std::function<void()> m_finished;
    std::mutex m_mutex;
    std::condition_variable m_wanted;
    std::optional<Request> m_request;
    std::optional<Result> m_result;
    std::vector<SnapshotDiff> m_released;
    std::atomic<bool> m_canceled = false;
    std::atomic<bool> m_ending = false;
    std::thread m_thread;
};

} // namespace cratewell
