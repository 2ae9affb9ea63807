#include "media/internal/preview_loader.h"

#include <QThread>
#include <type_traits>

namespace cratewell {

namespace {

constexpr qint64 diskBudget = qint64{2} << 30; // bytes

void keep(const PreviewCache &cache, const QByteArray &key, const DecodeResult &result)
{
    if (!result)
        return;
    if (const auto *picture = std::get_if<DecodedPicture>(&*result))
        cache.save(key, *picture);
    else if (const auto *sound = std::get_if<DecodedSound>(&*result))
        cache.save(key, *sound);
}

DecodeResult asResult(const PreviewCache::Preview &preview)
{
    return std::visit([](const auto &value) -> DecodeResult { return value; }, preview);
}

} // namespace

PreviewLoader::PreviewLoader(DecodePool &decoders, const Location &cacheFolder)
    : m_decoders(decoders), m_cache(std::make_shared<PreviewCache>(cacheFolder, diskBudget)),
      m_readers(std::max(1, QThread::idealThreadCount()))
{
    m_writers.setMaxThreadCount(1);
    m_writers.setThreadPriority(QThread::LowPriority);
    m_writers.start([cache = m_cache] { cache->prune(); }, -1);
}

PreviewLoader::~PreviewLoader()
{
    m_writers.clear();
    m_writers.waitForDone();
}

std::unique_ptr<PreviewRequest> PreviewLoader::submit(const QByteArray &cacheKey, DecodeJob job)
{
    const QByteArray key = job.key;
    const auto decode = [this, cacheKey](DecodeJob wanted) {
        const auto finished = std::move(wanted.finished);
        wanted.finished = [this, cacheKey, finished](const DecodeResult &result) {
            m_writers.start([cache = m_cache, cacheKey, result] { keep(*cache, cacheKey, result); });
            finished(result);
        };
        return m_decoders.submit(std::move(wanted));
    };
    return m_readers.submit(key, [cache = m_cache, cacheKey, decode, job = std::move(job)] {
        return [found = cache->load(cacheKey), decode, job](bool wanted) -> std::unique_ptr<PreviewRequest> {
            if (found)
                job.finished(asResult(*found));
            else if (wanted)
                return decode(job);
            return nullptr;
        };
    });
}

} // namespace cratewell
