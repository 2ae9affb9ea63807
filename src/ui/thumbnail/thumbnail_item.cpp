#include "ui/thumbnail/thumbnail_item.h"

#include <QQuickWindow>
#include <QSGImageNode>
#include <QSGTexture>
#include <cmath>

namespace cratewell {

using Sign = PlaceholderLook::Sign;

ThumbnailItem::ThumbnailItem(QQuickItem *parent) : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

void ThumbnailItem::setSource(ThumbnailProvider *source)
{
    if (source == m_source)
        return;
    if (m_source)
        m_source->disconnect(this);
    m_source = source;
    if (source) {
        connect(source, &ThumbnailProvider::changed, this, [this](const Location &url) {
            if (url != m_url)
                return;
            m_request.reset();
            m_frameRequest.reset();
            m_frame = -1;
            m_ticket.reset();
            m_outdated = true;
            takeDuration();
            polish();
        });
        connect(source, &ThumbnailProvider::scrubFrameChanged, this, [this](const Location &url, int bucket) {
            if (url == m_url && bucket == m_frame)
                polish();
        });
        connect(source, &ThumbnailProvider::infoChanged, this, [this](const Location &url) {
            if (url == m_url)
                takeDuration();
        });
    }
    forget();
    Q_EMIT sourceChanged();
}

void ThumbnailItem::setUrl(const Location &url)
{
    if (url == m_url)
        return;
    m_url = url;
    forget();
    Q_EMIT urlChanged();
}

void ThumbnailItem::setKind(AssetKind kind)
{
    if (kind == m_kind)
        return;
    m_kind = kind;
    polish();
    Q_EMIT kindChanged();
}

void ThumbnailItem::setActive(bool active)
{
    if (active == m_active)
        return;
    m_active = active;
    withdrawIfUnseen();
    Q_EMIT activeChanged();
}

void ThumbnailItem::setRadius(qreal radius)
{
    if (radius == m_radius)
        return;
    m_radius = radius;
    polish();
    Q_EMIT radiusChanged();
}

void ThumbnailItem::setWhole(bool whole)
{
    if (whole == isWhole())
        return;
    m_fit = whole ? PictureFit::Contain : PictureFit::Cover;
    polish();
    Q_EMIT wholeChanged();
}

void ThumbnailItem::setScrub(qreal fraction)
{
    if (fraction == m_scrub)
        return;
    const bool frameChanges =
        m_scrub < 0 || fraction < 0 || Media::scrubBucket(m_scrub) != Media::scrubBucket(fraction);
    m_scrub = fraction;
    if (frameChanges) {
        m_ticket.reset();  // of a frame that is no longer wanted
        m_outdated = true; // what is drawn stays until the other is there
        polish();
    }
    Q_EMIT scrubChanged();
}

void ThumbnailItem::takeDuration()
{
    const auto info = m_source && !m_url.isEmpty() ? m_source->info(m_url) : std::nullopt;
    const QString text = info && info->duration > 0 ? timeString(info->duration) : QString();
    // A source that is short of memory forgets; what was known stays until something else is.
    const bool known = m_source && m_source->state(m_url) != Media::State::Missing;
    if (text == m_duration || (text.isEmpty() && !known))
        return;
    m_duration = text;
    Q_EMIT durationChanged();
}

void ThumbnailItem::setIconFamily(const QString &family)
{
    if (family == m_iconFamily)
        return;
    m_iconFamily = family;
    polish();
    Q_EMIT iconFamilyChanged();
}

ThumbnailShape ThumbnailItem::shape() const
{
    const qreal ratio = window() ? window()->effectiveDevicePixelRatio() : 1.0;
    return {(size() * ratio).toSize(), int(std::lround(m_radius * ratio)), m_fit};
}

// Another file: nothing of the old one may be seen.
void ThumbnailItem::forget()
{
    m_request.reset();
    m_frameRequest.reset();
    m_frame = -1;
    m_ticket.reset();
    draw({}, {}, Drawn::Nothing);
    if (!m_duration.isEmpty()) {
        m_duration.clear();
        Q_EMIT durationChanged();
    }
    polish();
}

void ThumbnailItem::withdrawIfUnseen()
{
    if (m_active && isVisible()) {
        polish();
        return;
    }
    m_request.reset();
    m_ticket.reset();
}

void ThumbnailItem::updatePolish()
{
    const ThumbnailShape wanted = shape();
    if (!m_source || m_url.isEmpty() || wanted.size.isEmpty() || showScrubFrame(wanted))
        return;
    switch (m_source->state(m_url)) {
    case Media::State::Ready:
        m_request.reset();
        takeDuration();
        if (m_kind == AssetKind::Audio)
            showPlaceholder(Sign::Stage, wanted);
        else if (needsPicture(wanted))
            showPicture(m_source->picture(m_url), wanted);
        return;
    case Media::State::Missing:
        if (m_active && isVisible() && !m_request && needsPicture(wanted))
            m_source->requestInOrder(*this);
        // The picture of a file that was rewritten stays until the new one is there.
        if (m_drawn != Drawn::Picture)
            showPlaceholder(Sign::None, wanted);
        return;
    case Media::State::Failed:
        m_request.reset();
        m_ticket.reset();
        showPlaceholder(Sign::Broken, wanted);
        return;
    }
}

void ThumbnailItem::requestPicture()
{
    if (m_source && m_active && isVisible() && !m_request && m_source->state(m_url) == Media::State::Missing)
        m_request = m_source->request(m_url);
}

// True when a frame under the pointer is shown or has been asked for; until it comes, what is drawn stays.
bool ThumbnailItem::showScrubFrame(const ThumbnailShape &wanted)
{
    if (m_scrub < 0 || m_kind != AssetKind::Video || m_drawn != Drawn::Picture) {
        m_frameRequest.reset();
        m_frame = -1;
        return false;
    }
    const int bucket = Media::scrubBucket(m_scrub);
    const QImage picture = m_source->scrubFrame(m_url, bucket);
    if (!picture.isNull()) {
        m_frameRequest.reset();
        showPicture(picture, wanted);
    } else if (bucket != m_frame) {
        m_frameRequest = m_source->requestScrubFrame(m_url, bucket);
    }
    m_frame = bucket;
    return true;
}

// The source may have let go of the picture that is on the screen: it is enough as long as it fits.
bool ThumbnailItem::needsPicture(const ThumbnailShape &wanted) const
{
    return m_drawn != Drawn::Picture || m_outdated || m_cutTo != wanted;
}

void ThumbnailItem::showPicture(const QImage &picture, const ThumbnailShape &wanted)
{
    if (picture.isNull())
        return;
    if (const QImage ready = m_source->scaler().ready(picture, wanted); !ready.isNull()) {
        m_ticket.reset();
        draw(ready, wanted, Drawn::Picture);
        return;
    }
    if (m_drawn != Drawn::Picture)
        showPlaceholder(Sign::None, wanted);
    if (m_ticket) {
        // One cut at a time: while a card is being resized the next one starts when this one is done.
        return;
    }
    m_ticket = m_source->scaler().cut(picture, wanted, [this, wanted](const QImage &cut) {
        m_ticket.reset();
        draw(cut, wanted, Drawn::Picture);
        polish();
    });
}

void ThumbnailItem::showPlaceholder(Sign sign, const ThumbnailShape &wanted)
{
    draw(m_source->placeholder({m_kind, sign, m_iconFamily}, wanted), wanted, Drawn::Placeholder);
}

void ThumbnailItem::draw(const QImage &image, const ThumbnailShape &cutTo, Drawn what)
{
    m_cutTo = cutTo;
    m_outdated = false;
    if (image.cacheKey() != m_image.cacheKey()) {
        m_image = image;
        m_imageChanged = true;
        update();
    }
    const bool wasShown = isShown();
    m_drawn = what;
    if (wasShown != isShown())
        Q_EMIT shownChanged();
}

QSGNode *ThumbnailItem::updatePaintNode(QSGNode *old, UpdatePaintNodeData *)
{
    if (m_image.isNull() || size().isEmpty()) {
        delete old;
        m_imageChanged = true;
        return nullptr;
    }
    auto *node = static_cast<QSGImageNode *>(old);
    if (!node) {
        node = window()->createImageNode();
        node->setOwnsTexture(true);
        m_imageChanged = true;
    }
    if (m_imageChanged) {
        node->setTexture(window()->createTextureFromImage(m_image, QQuickWindow::TextureHasAlphaChannel));
        m_imageChanged = false;
    }
    node->setRect(boundingRect());
    node->setFiltering(m_image.size() == shape().size ? QSGTexture::Nearest : QSGTexture::Linear);
    return node;
}

void ThumbnailItem::itemChange(ItemChange change, const ItemChangeData &data)
{
    QQuickItem::itemChange(change, data);
    if (change == ItemVisibleHasChanged)
        withdrawIfUnseen();
    else if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange)
        polish();
}

void ThumbnailItem::geometryChange(const QRectF &now, const QRectF &before)
{
    QQuickItem::geometryChange(now, before);
    if (now.size() == before.size())
        return;
    polish();
    update();
}

} // namespace cratewell
