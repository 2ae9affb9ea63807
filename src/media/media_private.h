#pragma once

#include "media/media.h"
#include "media/previews/preview_loader.h"
#include "media/previews/preview_still.h"
#include "media/previews/preview_store.h"
#include "platform/system_paths.h"
#include "vault/vault_snapshot.h"

namespace cratewell {

// Bytes of what stores keep.
struct PreviewCost
{
    qint64 operator()(const QImage &image) const { return image.sizeInBytes(); }
    qint64 operator()(const WaveformPeaks &peaks) const { return peaks.size() * qint64(sizeof(float)); }
    // With the table of whole numbers that grading makes beside it.
    qint64 operator()(const LUT &lut) const { return qint64(lut.data().size_bytes()) * 11 / 8; }
    qint64 operator()(const MediaInfo &) const { return sizeof(MediaInfo); }
};

struct Media::Private
{
    Private(Media &media, const SystemPaths &paths);

    void forgetChanged(const SnapshotDiff &diff);
    template<typename Store> QList<Location> forgetIn(Store &store, const SnapshotDiff &diff);
    void changeStill();

    std::unique_ptr<PreviewRequest> requestPicture(const Asset &asset, int part, const DecodeRequest &request,
                                                   RequestPlace::Rank rank);
    // Reads the LUT, and where somebody waits grades the still with it.
    std::unique_ptr<PreviewRequest> requestLut(const PreviewKey &key);
    std::unique_ptr<PreviewRequest> requestGraded(const PreviewKey &key, const RequestPlace &place,
                                                  const LUT &lut);
    // Keeps what a result says of its file, and its value or failure in the store; true when that is news.
    // A failure that is not the file's is forgotten at once: the next request tries again.
    template<typename Value, typename Store>
    bool take(Store &store, const PreviewKey &key, quint64 turn, const DecodeResult &result,
              Value DecodedFile::*value);
    void takeInfo(const PreviewKey &key, quint64 turn, const MediaInfo &found);
    void notifyPicture(const Location &url, int part);

    Media &q;
    // Budgets in bytes; those of pictures together 512 MB.
    PreviewStore<QImage, PreviewCost> pictures{qint64{384} << 20}; // thumbnails, scrub frames
    PreviewStore<QImage, PreviewCost> lutThumbnails{qint64{128} << 20};
    PreviewStore<WaveformPeaks, PreviewCost> waveforms{qint64{16} << 20};
    PreviewStore<LUT, PreviewCost> luts{qint64{64} << 20};
    PreviewStore<MediaInfo, PreviewCost> info{qint64{4} << 20};
    RequestOrder order;
    DecodePool pool;
    PreviewLoader loader;
    PreviewStill still;
    QImage smallStill; // under LUT thumbnails; null until it is needed
    quint64 stillNumber = 0;
    KeyedJobQueue lutJobs;
};

} // namespace cratewell
