#include "media/previews/preview_loader.h"

#include "media/previews/preview_formats.h"
#include "platform/posix/file_status.h"

#include <QThread>
#include <QTimer>
#include <atomic>
#include <chrono>
#include <fcntl.h>

namespace cratewell {

namespace {

constexpr qint64 diskBudget = qint64{2} << 30; // bytes
// Each holds a picture in memory: more are not written, and will be decoded again one day.
constexpr int mostWaiting = 64;
constexpr int writesBetweenPrunings = 2000;

// A file that was copied with its times keeps its previews: neither its inode nor when it was made counts.
QByteArray cacheKey(const Location &file, const FileVersion &version, const QByteArray &marker)
{
    return file.bytes() + '/' + marker + ' ' + QByteArray::number(version.size) + ' ' +
           QByteArray::number(version.modified);
}

// Whether what was decoded is of this version: the file may have been written again since it was listed.
bool isStill(const Location &file, const FileVersion &version)
{
    const auto status = statusAt(AT_FDCWD, file.c_str(), Links::Follow);
    return status && status->size == version.size && status->modified.count() == version.modified;
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

std::unique_ptr<PreviewRequest> PreviewLoader::submit(const FileVersion &version, DecodeJob job)
{
    const Location file = job.request.file;
    const QByteArray marker = markerOf(job.request);
    const QByteArray key = cacheKey(file, version, marker);
    const RequestPlace place = job.place;
    job.key = previewJobKey(file, version, marker);
    const auto decode = [this, key, version, file](DecodeJob wanted) {
        wanted.finished = [this, key, version, file,
                           finished = std::move(wanted.finished)](const DecodeResult &result) {
            keep(version, file, key, result);
            finished(result);
        };
        return m_decoders.submit(std::move(wanted));
    };
    return m_readers.submit(job.key, place, [cache = m_cache, key, decode, job] {
        return [found = cache->load(key), decode, job](bool wanted) -> std::unique_ptr<PreviewRequest> {
            if (found)
                job.finished(*found);
            else if (wanted)
                return decode(job);
            return nullptr;
        };
    });
}

void PreviewLoader::keep(const FileVersion &version, const Location &file, const QByteArray &key,
                         const DecodeResult &result)
{
    if (!result || m_writing->waiting >= mostWaiting)
        return;
    ++m_writing->waiting;
    m_writer->start([cache = m_cache, writing = m_writing, version, file, key, preview = *result] {
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
