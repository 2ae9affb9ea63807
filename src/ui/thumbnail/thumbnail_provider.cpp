#include "ui/thumbnail/thumbnail_provider.h"

#include "ui/shell/ui_engine.h"
#include "ui/thumbnail/thumbnail_item.h"
#include "vault/vault.h"

#include <algorithm>
#include <utility>

namespace cratewell {

QImage ThumbnailProvider::placeholder(const PlaceholderLook &look, const ThumbnailShape &shape)
{
    constexpr size_t kept = 24; // while sizes change, older ones make room
    const auto found = std::ranges::find_if(m_placeholders, [&](const PaintedPlaceholder &entry) {
        return entry.look == look && entry.shape == shape;
    });
    if (found != m_placeholders.end())
        return found->picture;
    if (m_placeholders.size() == kept)
        m_placeholders.erase(m_placeholders.begin());
    return m_placeholders.emplace_back(PaintedPlaceholder{look, shape, placeholderPicture(look, shape)})
        .picture;
}

void ThumbnailProvider::requestInOrder(ThumbnailItem &item)
{
    if (m_requesting.empty())
        QMetaObject::invokeMethod(this, &ThumbnailProvider::requestNow, Qt::QueuedConnection);
    m_requesting.emplace_back(&item);
}

void ThumbnailProvider::requestNow()
{
    auto items = std::exchange(m_requesting, {});
    std::erase_if(items, [](const QPointer<ThumbnailItem> &item) { return item.isNull(); });
    std::ranges::sort(items, {}, [](const QPointer<ThumbnailItem> &item) {
        const QPointF place = item->mapToScene({});
        return std::pair(place.y(), place.x());
    });
    for (const QPointer<ThumbnailItem> &item : items)
        item->requestPicture();
}

VaultThumbnails::VaultThumbnails(const Vault &vault, Media &media) : m_vault(vault), m_media(media)
{
    connect(&media, &Media::thumbnailChanged, this, &ThumbnailProvider::changed);
    connect(&media, &Media::waveformChanged, this, &ThumbnailProvider::changed);
    connect(&media, &Media::infoChanged, this, &ThumbnailProvider::infoChanged);
    connect(&media, &Media::scrubFrameChanged, this, &ThumbnailProvider::scrubFrameChanged);
}

VaultThumbnails *VaultThumbnails::create(QQmlEngine *engine, QJSEngine *)
{
    const UiContext &context = UiEngine::contextOf(engine);
    return new VaultThumbnails(context.vault, context.media);
}

const Asset *VaultThumbnails::find(const Location &url) const
{
    const VaultSnapshot &snapshot = *m_vault.snapshot();
    const std::optional<AssetIndex> index = snapshot.find(url);
    return index ? &snapshot.asset(*index) : nullptr;
}

Media::State VaultThumbnails::state(const Location &url) const
{
    const Asset *asset = find(url);
    if (!asset)
        return Media::State::Missing;
    if (asset->kind != AssetKind::Audio)
        return m_media.thumbnailState(*asset);
    const std::optional<WaveformPeaks> peaks = m_media.waveform(*asset);
    if (!peaks)
        return Media::State::Missing;
    return peaks->isEmpty() ? Media::State::Failed : Media::State::Ready;
}

QImage VaultThumbnails::picture(const Location &url) const
{
    const Asset *asset = find(url);
    return asset ? m_media.thumbnail(*asset) : QImage();
}

std::unique_ptr<PreviewRequest> VaultThumbnails::request(const Location &url)
{
    const Asset *asset = find(url);
    if (!asset)
        return nullptr;
    return asset->kind == AssetKind::Audio ? m_media.requestWaveform(*asset)
                                           : m_media.requestThumbnail(*asset);
}

QImage VaultThumbnails::scrubFrame(const Location &url, int bucket) const
{
    const Asset *asset = find(url);
    return asset ? m_media.scrubFrame(*asset, bucket) : QImage();
}

std::unique_ptr<PreviewRequest> VaultThumbnails::requestScrubFrame(const Location &url, int bucket)
{
    const Asset *asset = find(url);
    return asset ? m_media.requestScrubFrame(*asset, bucket) : nullptr;
}

WaveformPeaks VaultThumbnails::waveform(const Location &url) const
{
    const Asset *asset = find(url);
    return asset ? m_media.waveform(*asset).value_or(WaveformPeaks()) : WaveformPeaks();
}

std::optional<MediaInfo> VaultThumbnails::info(const Location &url) const
{
    const Asset *asset = find(url);
    return asset ? m_media.info(*asset) : std::nullopt;
}

} // namespace cratewell
