#pragma once

#include "ui/controls/drawn_item.h"
#include "ui/thumbnail/thumbnail_provider.h"
#include "ui/thumbnail/waveform_drawing.h"

#include <QPointer>

namespace cratewell {

// The waveform of a sound in the colors of its category, over a thumbnail item that asks for it.
class WaveformItem : public cratewell::DrawnItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(cratewell::ThumbnailProvider *source READ source WRITE setSource NOTIFY sourceChanged FINAL)
    Q_PROPERTY(cratewell::Location url READ url WRITE setUrl NOTIFY urlChanged FINAL)
    // The raw value of a WaveStyle.
    Q_PROPERTY(QString waveStyle READ waveStyle WRITE setWaveStyle NOTIFY waveStyleChanged FINAL)
public:
    using DrawnItem::DrawnItem;

    ThumbnailProvider *source() const { return m_source; }
    void setSource(ThumbnailProvider *source);
    const Location &url() const { return m_url; }
    void setUrl(const Location &url);
    const QString &waveStyle() const { return m_waveStyle; }
    void setWaveStyle(const QString &text);

Q_SIGNALS:
    void sourceChanged();
    void urlChanged();
    void waveStyleChanged();

protected:
    QImage draw(QSize pixels, qreal ratio) const override;

private:
    void takePeaks();

    QPointer<ThumbnailProvider> m_source;
    Location m_url;
    QString m_waveStyle;
    WaveformPeaks m_peaks;
};

} // namespace cratewell
