#include "media/media.h"

#include "media/internal/decode_pool.h"
#include "media/internal/preview_still.h"
#include "media/internal/thumbnail_store.h"
#include "platform/system_paths.h"
#include "state/prefs.h"
#include "vault/vault.h"

namespace cratewell {

namespace {

constexpr qint64 pictureBudget = qint64{256} << 20; // bytes
constexpr int thumbnailSide = 640;                  // pixels
constexpr double thumbnailFraction = 0.35;          // of a video's duration

bool hasThumbnail(AssetKind kind)
{
    return kind == AssetKind::Video || kind == AssetKind::Image;
}

DecodeWish thumbnailWish(const Asset &asset)
{
    return {.file = asset.url,
            .kind =
                asset.kind == AssetKind::Video ? worker::JobKind::VideoFrame : worker::JobKind::StillImage,
            .maxSide = thumbnailSide,
            .fraction = thumbnailFraction};
}

// Another version of a file is other work. A slash ends the path: no path goes on after it.
QByteArray thumbnailKey(const Asset &asset)
{
    const FileVersion &version = asset.version;
    return asset.url.bytes() + "/thumbnail " + QByteArray::number(version.inode) + ' ' +
           QByteArray::number(version.size) + ' ' + QByteArray::number(version.modified);
}

} // namespace

struct Media::Private
{
    Private(const SystemPaths &paths) : pool(paths.workerProgram, DecodePool::usualLimits()), still(pool) {}

    ThumbnailStore thumbnails{pictureBudget};
    quint64 turn = 0;
    DecodePool pool;
    PreviewStill still;
};

Media::Media(Vault &vault, Prefs &prefs, const SystemPaths &paths) : d(std::make_unique<Private>(paths))
{
    d->still.setFile(Location::fromText(prefs.previewStill()));
    connect(&d->still, &PreviewStill::changed, this, &Media::stillChanged);
    connect(&prefs, &Prefs::previewStillChanged, this,
            [this, &prefs] { d->still.setFile(Location::fromText(prefs.previewStill())); });
    connect(&vault, &Vault::rescanned, this, [this](const VaultChanges &changes) {
        for (const AssetIndex index : changes.altered) {
            const Asset &asset = changes.after->asset(index);
            if (d->thumbnails.forgetOthers(asset.url, asset.version))
                Q_EMIT thumbnailChanged(asset.url);
        }
        for (const AssetIndex index : changes.removed) {
            const Location &url = changes.before->asset(index).url;
            if (d->thumbnails.forget(url))
                Q_EMIT thumbnailChanged(url);
        }
    });
}

Media::~Media() = default;

QImage Media::thumbnail(const Asset &asset) const
{
    return d->thumbnails.show(asset.url, asset.version);
}

Media::State Media::thumbnailState(const Asset &asset) const
{
    if (!hasThumbnail(asset.kind))
        return State::Failed;
    switch (d->thumbnails.state(asset.url, asset.version)) {
    case ThumbnailStore::State::Ready:
        return State::Ready;
    case ThumbnailStore::State::Failed:
        return State::Failed;
    case ThumbnailStore::State::Missing:
        break;
    }
    return State::Missing;
}

std::unique_ptr<PreviewRequest> Media::requestThumbnail(const Asset &asset)
{
    if (thumbnailState(asset) != State::Missing)
        return nullptr;
    return d->pool.submit(
        {.key = thumbnailKey(asset),
         .wish = thumbnailWish(asset),
         .finished = [this, url = asset.url, version = asset.version,
                      turn = ++d->turn](const DecodeResult &result) {
             if (d->thumbnails.put(url, version, turn,
                                   result ? std::get<DecodedPicture>(*result).image : QImage()))
                 Q_EMIT thumbnailChanged(url);
         }});
}

QImage Media::still() const
{
    return d->still.image();
}

} // namespace cratewell
