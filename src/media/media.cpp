#include "media/media.h"

#include "media/internal/media_private.h"
#include "state/prefs.h"
#include "vault/vault.h"

#include <QThread>
#include <algorithm>

namespace cratewell {

namespace {

constexpr int thumbnailSide = 640;         // pixels
constexpr double thumbnailFraction = 0.35; // of a video's duration
constexpr int scrubSide = 480;
constexpr int peakCount = 240;

constexpr int thumbnailPart = -1; // the others are scrub frames

PreviewKey keyOf(const Asset &asset, int part = 0)
{
    return {.url = asset.url, .version = asset.version, .part = part};
}

// Another version of a file is other work. A slash ends the path: no path goes on after it.
QByteArray jobKey(const Asset &asset, const QByteArray &marker)
{
    const FileVersion &version = asset.version;
    return asset.url.bytes() + '/' + marker + ' ' + QByteArray::number(version.inode) + ' ' +
           QByteArray::number(version.size) + ' ' + QByteArray::number(version.modified);
}

// A file that was copied with its times keeps its previews, so the inode does not count.
QByteArray cacheKey(const Asset &asset, const QByteArray &marker)
{
    return asset.url.bytes() + '/' + marker + ' ' + QByteArray::number(asset.version.size) + ' ' +
           QByteArray::number(asset.version.modified);
}

QByteArray markerOf(int part)
{
    return part == thumbnailPart ? QByteArray("t") : '#' + QByteArray::number(part);
}

DecodeWish frameWish(const Location &url, double fraction, int maxSide)
{
    return {.file = url, .kind = worker::JobKind::VideoFrame, .maxSide = maxSide, .fraction = fraction};
}

template<typename T> std::optional<T> valueIn(const DecodeResult &result)
{
    const T *value = result ? std::get_if<T>(&*result) : nullptr;
    return value ? std::optional(*value) : std::nullopt;
}

// LUT thumbnails are drawn over the still at four tenths of its size.
QImage reduced(const QImage &still)
{
    return still.scaled(still.size() * 0.4, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace

Media::Private::Private(Media &media, const SystemPaths &paths)
    : q(media), pool(paths.workerProgram, DecodePool::usualLimits()),
      loader(pool, paths.cacheHome.child("cratewell").child("previews")), still(pool),
      lutJobs(std::max(1, QThread::idealThreadCount()))
{
}

void Media::Private::forgetChanged(const VaultChanges &changes)
{
    const auto forget = [this](const Location &url, const auto &forgetIn) {
        if (const bool frames = forgetIn(pictures), graded = forgetIn(lutThumbnails); frames || graded)
            Q_EMIT q.thumbnailChanged(url);
        if (forgetIn(sounds))
            Q_EMIT q.waveformChanged(url);
        if (forgetIn(luts))
            Q_EMIT q.lutChanged(url);
        if (forgetIn(facts))
            Q_EMIT q.factsChanged(url);
    };
    for (const AssetIndex index : changes.altered) {
        const Asset &asset = changes.after->asset(index);
        forget(asset.url, [&](auto &store) { return store.forgetOthers(asset.url, asset.version); });
    }
    for (const AssetIndex index : changes.removed) {
        const Location &url = changes.before->asset(index).url;
        forget(url, [&](auto &store) { return store.forget(url); });
    }
}

void Media::Private::changeStill()
{
    smallStill = {};
    ++stillNumber;
    Q_EMIT q.stillChanged();
    for (const Location &url : lutThumbnails.clear())
        Q_EMIT q.thumbnailChanged(url);
}

void Media::Private::tellPicture(const Location &url, int part)
{
    if (part == thumbnailPart)
        Q_EMIT q.thumbnailChanged(url);
    else
        Q_EMIT q.scrubFrameChanged(url, part);
}

std::unique_ptr<PreviewRequest> Media::Private::requestPicture(const Asset &asset, int part,
                                                               const DecodeWish &wish, DecodeJob::Rank rank)
{
    const PreviewKey key = keyOf(asset, part);
    if (pictures.state(key) != State::Missing)
        return nullptr;
    const QByteArray marker = markerOf(part);
    const auto finished = [this, key, now = ++turn](const DecodeResult &result) {
        if (pictures.put(key, now, valueIn<DecodedPicture>(result)))
            tellPicture(key.url, key.part);
    };
    return loader.submit(cacheKey(asset, marker), {jobKey(asset, marker), wish, rank, finished});
}

std::unique_ptr<PreviewRequest> Media::Private::requestLutThumbnail(const Asset &asset)
{
    const PreviewKey key = keyOf(asset);
    if (lutThumbnails.state(key) != State::Missing)
        return nullptr;
    if (smallStill.isNull())
        smallStill = reduced(still.image());
    const LUT *known = luts.show(key);
    const auto work = [this, key, still = smallStill, number = stillNumber, now = ++turn,
                       lut = known ? std::optional(*known) : std::nullopt]() -> ThreadJobs::Effects {
        const std::optional<LUT> table = lut ? lut : LUT::read(key.url);
        const QImage graded = table ? table->apply(still) : QImage();
        return [=, this](bool) {
            if (!lut && luts.put(key, now, table))
                Q_EMIT q.lutChanged(key.url);
            const auto thumbnail = graded.isNull() ? std::nullopt : std::optional(graded);
            // Over another still since: somebody will ask again.
            if (number == stillNumber && lutThumbnails.put(key, now, thumbnail))
                Q_EMIT q.thumbnailChanged(key.url);
            return nullptr;
        };
    };
    return lutJobs.submit(jobKey(asset, "l") + ' ' + QByteArray::number(stillNumber), work);
}

Media::Media(Vault &vault, Prefs &prefs, const SystemPaths &paths)
    : d(std::make_unique<Private>(*this, paths))
{
    d->still.setFile(Location::fromText(prefs.previewStill()));
    connect(&d->still, &PreviewStill::changed, this, [this] { d->changeStill(); });
    connect(&prefs, &Prefs::previewStillChanged, this,
            [this, &prefs] { d->still.setFile(Location::fromText(prefs.previewStill())); });
    connect(&vault, &Vault::rescanned, this,
            [this](const VaultChanges &changes) { d->forgetChanged(changes); });
}

Media::~Media() = default;

QImage Media::thumbnail(const Asset &asset) const
{
    if (asset.kind == AssetKind::Lut) {
        const QImage *graded = d->lutThumbnails.show(keyOf(asset));
        return graded ? *graded : QImage();
    }
    const DecodedPicture *picture = d->pictures.show(keyOf(asset, thumbnailPart));
    return picture ? picture->image : QImage();
}

Media::State Media::thumbnailState(const Asset &asset) const
{
    switch (asset.kind) {
    case AssetKind::Video:
    case AssetKind::Image:
        return d->pictures.state(keyOf(asset, thumbnailPart));
    case AssetKind::Lut:
        return d->lutThumbnails.state(keyOf(asset));
    case AssetKind::Audio:
        break;
    }
    return State::Failed;
}

std::unique_ptr<PreviewRequest> Media::requestThumbnail(const Asset &asset)
{
    using Rank = DecodeJob::Rank;
    switch (asset.kind) {
    case AssetKind::Video:
        return d->requestPicture(asset, thumbnailPart, frameWish(asset.url, thumbnailFraction, thumbnailSide),
                                 Rank::Usual);
    case AssetKind::Image:
        return d->requestPicture(
            asset, thumbnailPart,
            {.file = asset.url, .kind = worker::JobKind::StillImage, .maxSide = thumbnailSide}, Rank::Usual);
    case AssetKind::Lut:
        return d->requestLutThumbnail(asset);
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
    const DecodedPicture *picture = d->pictures.show(keyOf(asset, bucket));
    return picture ? picture->image : QImage();
}

std::unique_ptr<PreviewRequest> Media::requestScrubFrame(const Asset &asset, int bucket)
{
    if (asset.kind != AssetKind::Video || bucket < 0 || bucket >= scrubFrames)
        return nullptr;
    const double fraction = double(bucket) / (scrubFrames - 1);
    return d->requestPicture(asset, bucket, frameWish(asset.url, fraction, scrubSide),
                             DecodeJob::Rank::UnderPointer);
}

std::optional<WaveformPeaks> Media::waveform(const Asset &asset) const
{
    const PreviewKey key = keyOf(asset);
    if (const DecodedSound *sound = d->sounds.show(key))
        return sound->peaks;
    return d->sounds.state(key) == State::Failed ? std::optional(WaveformPeaks()) : std::nullopt;
}

std::unique_ptr<PreviewRequest> Media::requestWaveform(const Asset &asset)
{
    const PreviewKey key = keyOf(asset);
    if (asset.kind != AssetKind::Audio || d->sounds.state(key) != State::Missing)
        return nullptr;
    const auto finished = [this, key, now = ++d->turn](const DecodeResult &result) {
        if (d->sounds.put(key, now, valueIn<DecodedSound>(result)))
            Q_EMIT waveformChanged(key.url);
    };
    return d->loader.submit(
        cacheKey(asset, "w"),
        {.key = jobKey(asset, "w"),
         .wish = {.file = asset.url, .kind = worker::JobKind::AudioPeaks, .count = peakCount},
         .finished = finished});
}

double Media::duration(const Asset &asset) const
{
    if (const DecodedPicture *picture = d->pictures.show(keyOf(asset, thumbnailPart)))
        return picture->duration;
    const DecodedSound *sound = d->sounds.show(keyOf(asset));
    return sound ? sound->duration : 0;
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
    if (lutState(asset) != State::Missing)
        return nullptr;
    const auto work = [this, key = keyOf(asset), now = ++d->turn]() -> ThreadJobs::Effects {
        return [this, key, now, lut = LUT::read(key.url)](bool) {
            if (d->luts.put(key, now, lut))
                Q_EMIT lutChanged(key.url);
            return nullptr;
        };
    };
    return d->lutJobs.submit(jobKey(asset, "lut"), work);
}

std::optional<MediaFacts> Media::facts(const Asset &asset) const
{
    const MediaFacts *facts = d->facts.show(keyOf(asset));
    return facts ? std::optional(*facts) : std::nullopt;
}

Media::State Media::factsState(const Asset &asset) const
{
    return asset.kind == AssetKind::Lut ? State::Failed : d->facts.state(keyOf(asset));
}

std::unique_ptr<PreviewRequest> Media::requestFacts(const Asset &asset)
{
    if (factsState(asset) != State::Missing)
        return nullptr;
    const auto finished = [this, key = keyOf(asset), now = ++d->turn](const DecodeResult &result) {
        if (d->facts.put(key, now, valueIn<MediaFacts>(result)))
            Q_EMIT factsChanged(key.url);
    };
    return d->pool.submit({.key = jobKey(asset, "facts"),
                           .wish = {.file = asset.url, .kind = worker::JobKind::Facts},
                           .rank = DecodeJob::Rank::UnderPointer,
                           .finished = finished});
}

QImage Media::still() const
{
    return d->still.image();
}

} // namespace cratewell
