#pragma once

#include "media/internal/decode_pool.h"
#include "media/internal/preview_cache.h"
#include "media/internal/thread_jobs.h"

namespace cratewell {

// Gets previews from the cache on disk, and those that are not there from the decoders, whose work it keeps.
// Main thread.
class PreviewLoader
{
public:
    PreviewLoader(DecodePool &decoders, const Location &cacheFolder);
    ~PreviewLoader();

    // As DecodePool::submit(); the cache is asked under `cacheKey` first.
    [[nodiscard]] std::unique_ptr<PreviewRequest> submit(const QByteArray &cacheKey, DecodeJob job);

private:
    DecodePool &m_decoders;
    std::shared_ptr<const PreviewCache> m_cache;
    QThreadPool m_writers;
    ThreadJobs m_readers;
};

} // namespace cratewell
