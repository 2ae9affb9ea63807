#pragma once

#include "media/decoding/decode_pool.h"
#include "media/previews/keyed_job_queue.h"
#include "media/previews/preview_cache.h"
#include "vault/asset.h"

namespace cratewell {

// Gets previews from the cache on disk, and those that are not there from the decoders, whose work it keeps.
// Main thread.
class PreviewLoader
{
public:
    PreviewLoader(DecodePool &decoders, const Location &cacheFolder);
    // What waits to be written is written, if the disk takes it within a second.
    ~PreviewLoader();

    // As DecodePool::submit() for a job that has everything but its key.
    [[nodiscard]] std::unique_ptr<PreviewRequest> submit(const FileVersion &version, DecodeJob job);

private:
    struct Writing;

    void keep(const FileVersion &version, const Location &file, const QByteArray &key,
              const DecodeResult &result);

    DecodePool &m_decoders;
    std::shared_ptr<const PreviewCache> m_cache;
    std::shared_ptr<Writing> m_writing;
    std::unique_ptr<QThreadPool> m_writer;
    KeyedJobQueue m_readers;
};

// Names the work for one preview of one version of a file. No path goes on after the slash that ends it here.
QByteArray previewJobKey(const Location &file, const FileVersion &version, const QByteArray &marker);

} // namespace cratewell
