#include "media/media.h"

#include "media/media_private.h"
#include "media/previews/preview_formats.h"
#include "state/prefs.h"
#include "vault/vault.h"

#include <QThread>
#include <algorithm>

namespace cratewell {

namespace {

constexpr int thumbnailPart = -1; // the others are scrub frames

PreviewKey keyOf(const Asset &asset, int part = 0)
{
    return {.url = asset.url, .version = asset.version, .part = part};
}

// LUT thumbnails are drawn over the still at four tenths of its size, as large as other thumbnails at most.
QImage reduced(const QImage &still)
{
    QSize size = still.size() * 0.4;
    if (std::max(size.width(), size.height()) > thumbnailSide)
        size.scale(thumbnailSide, thumbnailSide, Qt::KeepAspectRatio);
    return still.scaled(size.expandedTo({1, 1}), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace

Media::Private::Private(Media &media, const SystemPaths &paths)
    : q(media), pool(paths.workerProgram, DecodePool::usualLimits()),
      loader(pool, paths.cacheHome.child("cratewell").child("previews")), still(pool, order),
      lutJobs(std::max(1, QThread::idealThreadCount()))
{
}

// Looks at the fewer: what has changed, or what is known.
template<typename Store> QList<Location> Media::Private::forgetIn(Store &store, const SnapshotDiff &diff)
{
    QList<Location> forgotten;
    if (store.fileCount() < qsizetype(diff.altered.size() + diff.removed.size())) {
        for (const Location &url : store.files()) {
            const auto index = diff.after->find(url);
            if (index ? store.forgetOutdated(url, diff.after->asset(*index).version) : store.forget(url))
                forgotten << url;
        }
        return forgotten;
    }
    for (const AssetIndex index : diff.altered) {
        const Asset &asset = diff.after->asset(index);
        if (store.forgetOutdated(asset.url, asset.version))
            forgotten << asset.url;
    }
    for (const AssetIndex index : diff.removed) {
        const Location &url = diff.before->asset(index).url;
        if (store.forget(url))
            forgotten << url;
    }
    return forgotten;
}

void Media::Private::forgetChanged(const SnapshotDiff &diff)
{
    for (const Location &url : forgetIn(pictures, diff) + forgetIn(lutThumbnails, diff))
        Q_EMIT q.thumbnailChanged(url);
    for (const Location &url : forgetIn(waveforms, diff))
        Q_EMIT q.waveformChanged(url);
    for (const Location &url : forgetIn(luts, diff))
        Q_EMIT q.lutChanged(url);
    for (const Location &url : forgetIn(info, diff))
        Q_EMIT q.infoChanged(url);
}

template<typename Value, typename Store>
bool Media::Private::take(Store &store, const PreviewKey &key, quint64 turn, const DecodeResult &result,
                          Value DecodedFile::*value)
{
    if (!result && result.error().mayPass())
        return false;
    if (result)
        takeInfo({.url = key.url, .version = key.version}, turn, result->info);
    return store.put(key, turn, result ? std::optional((*result).*value) : std::nullopt);
}

void Media::Private::takeInfo(const PreviewKey &key, quint64 turn, const MediaInfo &found)
{
    const MediaInfo *known = info.show(key);
    if (found == MediaInfo() || (known && *known == found))
        return;
    if (info.put(key, turn, found))
        Q_EMIT q.infoChanged(key.url);
}

void Media::Private::changeStill()
{
    smallStill = {};
    ++stillNumber;
    Q_EMIT q.stillChanged();
    for (const Location &url : lutThumbnails.clear())
        Q_EMIT q.thumbnailChanged(url);
}

void Media::Private::notifyPicture(const Location &url, int part)
{
    if (part == thumbnailPart)
        Q_EMIT q.thumbnailChanged(url);
    else
        Q_EMIT q.scrubFrameChanged(url, part);
}

std::unique_ptr<PreviewRequest> Media::Private::requestPicture(const Asset &asset, int part,
                                                               const DecodeRequest &request,
                                                               RequestPlace::Rank rank)
{
    const PreviewKey key = keyOf(asset, part);
    if (pictures.state(key) != State::Missing)
        return nullptr;
    const RequestPlace place = order.next(rank);
    const auto finished = [this, key, turn = place.number](const DecodeResult &result) {
        if (take(pictures, key, turn, result, &DecodedFile::image))
            notifyPicture(key.url, key.part);
    };
    return loader.submit(asset.version,
                         {.key = {}, .request = request, .place = place, .finished = finished});
}

std::unique_ptr<PreviewRequest> Media::Private::requestLut(const PreviewKey &key)
{
    const RequestPlace place = order.next();
    const auto work = [this, key, place]() -> KeyedJobQueue::Effects {
        return [this, key, place, lut = LUT::read(key.url)](bool wanted) -> std::unique_ptr<PreviewRequest> {
            if (!lut && DecodeFailure::ofReading(lut.error()).mayPass())
                return nullptr;
            if (luts.put(key, place.number, lut ? std::optional(*lut) : std::nullopt))
                Q_EMIT q.lutChanged(key.url);
            if (lut && wanted)
                return requestGraded(key, place, *lut);
            if (!lut)
                Q_EMIT q.thumbnailChanged(key.url);
            return nullptr;
        };
    };
    return lutJobs.submit(previewJobKey(key.url, key.version, "lut"), place, work);
}

std::unique_ptr<PreviewRequest> Media::Private::requestGraded(const PreviewKey &key,
                                                              const RequestPlace &place, const LUT &lut)
{
    if (lutThumbnails.state(key) != State::Missing)
        return nullptr;
    if (smallStill.isNull())
        smallStill = reduced(still.image());
    const auto work = [this, key, lut, over = smallStill, number = stillNumber,
                       turn = place.number]() -> KeyedJobQueue::Effects {
        return [=, this, graded = lut.apply(over)](bool) {
            // Over a former still it is no use; whoever waits for it requests it again.
            if (number != stillNumber || lutThumbnails.put(key, turn, graded))
                Q_EMIT q.thumbnailChanged(key.url);
            return nullptr;
        };
    };
    const QByteArray marker = "graded " + QByteArray::number(stillNumber);
    return lutJobs.submit(previewJobKey(key.url, key.version, marker), place, work);
}

Media::Media(Vault &vault, Prefs &prefs, const SystemPaths &paths)
    : d(std::make_unique<Private>(*this, paths))
{
    d->still.setFile(Location::fromText(prefs.previewStill()));
    connect(&d->still, &PreviewStill::changed, this, [this] { d->changeStill(); });
    connect(&prefs, &Prefs::previewStillChanged, this,
            [this, &prefs] { d->still.setFile(Location::fromText(prefs.previewStill())); });
    connect(&vault, &Vault::rescanned, this, [this](const SnapshotDiff &diff) { d->forgetChanged(diff); });
}

Media::~Media() = default;

QImage Media::thumbnail(const Asset &asset) const
{
    if (asset.kind == AssetKind::Lut) {
        const QImage *graded = d->lutThumbnails.show(keyOf(asset));
        return graded ? *graded : QImage();
    }
    const QImage *picture = d->pictures.show(keyOf(asset, thumbnailPart));
    return picture ? *picture : QImage();
}

Media::State Media::thumbnailState(const Asset &asset) const
{
    switch (asset.kind) {
    case AssetKind::Video:
    case AssetKind::Image:
        return d->pictures.state(keyOf(asset, thumbnailPart));
    case AssetKind::Lut:
        return lutState(asset) == State::Failed ? State::Failed : d->lutThumbnails.state(keyOf(asset));
    case AssetKind::Audio:
        break;
    }
    return State::Failed;
}

std::unique_ptr<PreviewRequest> Media::requestThumbnail(const Asset &asset)
{
    using Rank = RequestPlace::Rank;
    switch (asset.kind) {
    case AssetKind::Video:
        return d->requestPicture(asset, thumbnailPart, videoThumbnail(asset.url), Rank::Usual);
    case AssetKind::Image:
        return d->requestPicture(asset, thumbnailPart, stillThumbnail(asset.url), Rank::Usual);
    case AssetKind::Lut:
        if (thumbnailState(asset) != State::Missing)
            return nullptr;
        if (const LUT *known = d->luts.show(keyOf(asset)))
            return d->requestGraded(keyOf(asset), d->order.next(), *known);
        return d->requestLut(keyOf(asset));
    case AssetKind::Audio:
        break;
    }
    return nullptr;
}

int Media::scrubBucket(double fraction)
{
    constexpr int last = scrubFrames - 1;
    return fraction > 0 ? int(std::min(fraction, 1.0) * last) : 0;
}

QImage Media::scrubFrame(const Asset &asset, int bucket) const
{
    const QImage *picture = d->pictures.show(keyOf(asset, bucket));
    return picture ? *picture : QImage();
}

std::unique_ptr<PreviewRequest> Media::requestScrubFrame(const Asset &asset, int bucket)
{
    if (asset.kind != AssetKind::Video || bucket < 0 || bucket >= scrubFrames)
        return nullptr;
    const double fraction = double(bucket) / (scrubFrames - 1);
    return d->requestPicture(asset, bucket, cratewell::scrubFrame(asset.url, fraction),
                             RequestPlace::Rank::Interactive);
}

std::optional<WaveformPeaks> Media::waveform(const Asset &asset) const
{
    const PreviewKey key = keyOf(asset);
    if (const WaveformPeaks *peaks = d->waveforms.show(key))
        return *peaks;
    return d->waveforms.state(key) == State::Failed ? std::optional(WaveformPeaks()) : std::nullopt;
}

std::unique_ptr<PreviewRequest> Media::requestWaveform(const Asset &asset)
{
    const PreviewKey key = keyOf(asset);
    if (asset.kind != AssetKind::Audio || d->waveforms.state(key) != State::Missing)
        return nullptr;
    const RequestPlace place = d->order.next();
    const auto finished = [this, key, turn = place.number](const DecodeResult &result) {
        if (d->take(d->waveforms, key, turn, result, &DecodedFile::peaks))
            Q_EMIT waveformChanged(key.url);
    };
    return d->loader.submit(
        asset.version,
        {.key = {}, .request = waveformPeaks(asset.url), .place = place, .finished = finished});
}

std::optional<LUT> Media::lut(const Asset &asset) const
{
    const LUT *lut = d->luts.show(keyOf(asset));
    return lut ? std::optional(*lut) : std::nullopt;
}

Media::State Media::lutState(const Asset &asset) const
{
    return asset.kind == AssetKind::Lut ? d->luts.state(keyOf(asset)) : State::Failed;
}

std::unique_ptr<PreviewRequest> Media::requestLut(const Asset &asset)
{
    return lutState(asset) == State::Missing ? d->requestLut(keyOf(asset)) : nullptr;
}

std::optional<MediaInfo> Media::info(const Asset &asset) const
{
    const MediaInfo *info = d->info.show(keyOf(asset));
    return info ? std::optional(*info) : std::nullopt;
}

Media::State Media::infoState(const Asset &asset) const
{
    return asset.kind == AssetKind::Lut ? State::Failed : d->info.state(keyOf(asset));
}

std::unique_ptr<PreviewRequest> Media::requestInfo(const Asset &asset)
{
    if (infoState(asset) != State::Missing)
        return nullptr;
    const RequestPlace place = d->order.next(RequestPlace::Rank::Interactive);
    const auto finished = [this, key = keyOf(asset), turn = place.number](const DecodeResult &result) {
        if (!result && result.error().mayPass())
            return;
        if (d->info.put(key, turn, result ? std::optional(result->info) : std::nullopt))
            Q_EMIT infoChanged(key.url);
    };
    return d->pool.submit({.key = previewJobKey(asset.url, asset.version, "info"),
                           .request = fileInfo(asset.url),
                           .place = place,
                           .finished = finished});
}

QImage Media::still() const
{
    return d->still.image();
}

} // namespace cratewell
