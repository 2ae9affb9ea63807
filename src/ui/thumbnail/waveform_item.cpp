#include "ui/thumbnail/waveform_item.h"

#include "vault/category.h"

#include <QLinearGradient>
#include <algorithm>

namespace cratewell {

void WaveformItem::setSource(ThumbnailProvider *source)
{
    if (source == m_source)
        return;
    if (m_source)
        m_source->disconnect(this);
    m_source = source;
    if (source) {
        connect(source, &ThumbnailProvider::changed, this, [this](const Location &url) {
            if (url == m_url)
                takePeaks();
        });
    }
    takePeaks();
    Q_EMIT sourceChanged();
}

void WaveformItem::setUrl(const Location &url)
{
    if (!assignIfDifferent(m_url, url))
        return;
    m_peaks.clear();
    takePeaks();
    redraw();
    Q_EMIT urlChanged();
}

void WaveformItem::setWaveStyle(const QString &text)
{
    if (!assignIfDifferent(m_waveStyle, text))
        return;
    redraw();
    Q_EMIT waveStyleChanged();
}

// Peaks that were let go, or are made anew for a rewritten file, stay drawn until there are others.
void WaveformItem::takePeaks()
{
    if (!m_source || m_url.isEmpty())
        return;
    const bool failed = m_source->state(m_url) == PreviewState::Failed;
    const WaveformPeaks peaks = m_source->waveform(m_url);
    if ((peaks.isEmpty() && !failed) || std::ranges::equal(peaks, m_peaks))
        return;
    m_peaks = peaks;
    redraw();
}

QImage WaveformItem::draw(QSize pixels, qreal ratio) const
{
    if (m_peaks.isEmpty())
        return {};
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const auto colors = gradient(VaultCategory::Sfx);
    const QRectF place =
        QRectF(image.rect()).adjusted(4 * ratio, pixels.height() * 0.07, -4 * ratio, pixels.height() * -0.07);
    QLinearGradient tint(place.topLeft(), place.topRight());
    tint.setColorAt(0, QColor(colors[0]));
    tint.setColorAt(1, QColor(colors[1]));
    QPainter painter(&image);
    drawWaveform(painter, place, m_peaks, waveStyleFromRawValue(m_waveStyle), tint, ratio);
    return image;
}

} // namespace cratewell
