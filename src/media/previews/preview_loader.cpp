#include "media/previews/preview_loader.h"

#include <QThread>
#include <QTimer>
#include <chrono>
#include <sys/stat.h>

namespace cratewell {

namespace {

constexpr qint64 diskBudget = qint64{2} << 30; // bytes
// Each holds a picture in memory: more are not written, and will be decoded again one day.
constexpr int mostWaiting = 64;
constexpr int writesBetweenPrunings = 2000;

// A file that was copied with its times keeps its previews, so the inode does not count.
QByteArray cacheKey(const Location &file, const FileVersion &version, const QByteArray &marker)
{
    return file.bytes() + '/' + marker + ' ' + QByteArray::number(version.size) + ' ' +
           QByteArray::number(version.modified);
}

// Whether what was decoded is of this version: the file may have been written again since it was listed.
bool isStill(const Location &file, const FileVersion &version)
{
    struct stat info = {};
    if (stat(file.c_str(), &info) != 0)
        return false;
#if defined(__APPLE__)
    const timespec &modified = info.st_mtimespec;
#else
    const timespec &modified = info.st_mtim;
#endif
    return info.st_size == version.size &&
           qint64(modified.tv_sec) * 1'000'000'000 + modified.tv_nsec == version.modified;
}

DecodeResult asResult(const PreviewCache::Preview &preview)
{
    return std::visit([](const auto &value) -> DecodeResult { return value; }, preview);
}

} // namespace

struct PreviewLoader::Writing
{
    std::atomic<int> waiting = 0;
    std::atomic<bool> ending = false;
    int written = 0; // the writer's own
};

PreviewLoader::PreviewLoader(DecodePool &decoders, const Location &cacheFolder)
    : m_decoders(decoders), m_cache(std::make_shared<PreviewCache>(cacheFolder, diskBudget)),
      m_writing(std::make_shared<Writing>()), m_writer(std::make_unique<QThreadPool>()),
      m_readers(std::max(1, QThread::idealThreadCount()))
{
    m_writer->setMaxThreadCount(1);
    // Not while the first page comes.
    QTimer::singleShot(std::chrono::seconds(30), &m_readers, [this] {
        m_writer->start([cache = m_cache, writing = m_writing] { cache->prune(writing->ending); });
    });
}

PreviewLoader::~PreviewLoader()
{
    m_writing->ending = true;
    endOrAbandon(std::move(m_writer));
}

std::unique_ptr<PreviewRequest> PreviewLoader::submit(const FileVersion &version, const QByteArray &marker,
                                                      DecodeJob job)
{
    const QByteArray key = cacheKey(job.request.file, version, marker);
    job.key = previewJobKey(job.request.file, version, marker);
    const auto decode = [this, key, version](DecodeJob wanted) {
        wanted.finished = [this, key, version, file = wanted.request.file,
                           finished = std::move(wanted.finished)](const DecodeResult &result) {
            keep(version, file, key, result);
            finished(result);
        };
        return m_decoders.submit(std::move(wanted));
    };
    return m_readers.submit(job.key, [cache = m_cache, key, decode, job] {
        return [found = cache->load(key), decode, job](bool wanted) -> std::unique_ptr<PreviewRequest> {
            if (found)
                job.finished(asResult(*found));
            else if (wanted)
                return decode(job);
            return nullptr;
        };
    });
}

void PreviewLoader::keep(const FileVersion &version, const Location &file, const QByteArray &key,
                         const DecodeResult &result)
{
    std::optional<PreviewCache::Preview> preview;
    if (const auto *picture = result ? std::get_if<DecodedPicture>(&*result) : nullptr)
        preview = *picture;
    else if (const auto *sound = result ? std::get_if<DecodedAudio>(&*result) : nullptr)
        preview = *sound;
    if (!preview || m_writing->waiting >= mostWaiting)
        return;
    ++m_writing->waiting;
    m_writer->start([cache = m_cache, writing = m_writing, version, file, key, preview = *preview] {
        if (isStill(file, version))
            cache->save(key, preview);
        --writing->waiting;
        if (++writing->written % writesBetweenPrunings == 0)
            cache->prune(writing->ending);
    });
}

QByteArray previewJobKey(const Location &file, const FileVersion &version, const QByteArray &marker)
{
    return file.bytes() + '/' + marker + ' ' + QByteArray::number(version.inode) + ' ' +
           QByteArray::number(version.size) + ' ' + QByteArray::number(version.modified);
}

} // namespace cratewell
