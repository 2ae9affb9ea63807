#include "vault/scan/scan_worker.h"

#include "vault/vault_scan.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace cratewell {

namespace {

// A scan leaves the allocator with scratch memory that nobody needs until the next change of the disk.
void returnFreeMemory()
{
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

} // namespace

ScanWorker::ScanWorker(std::function<void()> finished)
    : m_finished(std::move(finished)), m_thread([this] { work(); })
{
}

ScanWorker::~ScanWorker()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_ending = true;
    }
    m_wanted.notify_one();
    m_thread.join();
}

void ScanWorker::start(const Location &root, std::shared_ptr<const VaultSnapshot> before)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_canceled = false;
        m_request = Request{root, std::move(before)};
    }
    m_wanted.notify_one();
}

void ScanWorker::cancel()
{
    m_canceled = true;
}

std::optional<ScanWorker::Result> ScanWorker::takeResult()
{
    const std::scoped_lock lock(m_mutex);
    return std::exchange(m_result, std::nullopt);
}

void ScanWorker::release(SnapshotDiff diff)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_released.push_back(std::move(diff));
    }
    m_wanted.notify_one();
}

void ScanWorker::work()
{
    std::unique_lock lock(m_mutex);
    while (!m_ending) {
        if (!m_released.empty()) {
            std::vector<SnapshotDiff> released;
            released.swap(m_released);
            lock.unlock();
            released.clear();
            returnFreeMemory();
            lock.lock();
        } else if (m_request) {
            Request request = *std::exchange(m_request, std::nullopt);
            lock.unlock();
            scan(std::move(request));
            lock.lock();
        } else {
            m_wanted.wait(lock);
        }
    }
}

void ScanWorker::scan(Request request)
{
    const auto canceled = [this] { return m_canceled || m_ending; };
    std::optional<Result> result;
    ScanResult found = VaultScan::run(request.root, request.before, canceled);
    if (found.snapshot)
        result = {VaultScan::compare(std::move(request.before), std::move(found.snapshot)), found.complete};
    {
        const std::scoped_lock lock(m_mutex);
        m_result = std::move(result);
    }
    m_finished();
    returnFreeMemory();
}

} // namespace cratewell
