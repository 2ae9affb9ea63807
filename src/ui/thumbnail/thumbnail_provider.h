#pragma once

#include "media/media.h"
#include "ui/thumbnail/placeholder.h"
#include "ui/thumbnail/thumbnail_scaler.h"

#include <QPointer>
#include <QtQml/qqmlregistration.h>
#include <vector>

class QJSEngine;
class QQmlEngine;

namespace cratewell {

class ThumbnailItem;
class Vault;

// Where thumbnail items get the pictures of files. Main thread.
class ThumbnailProvider : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Use VaultThumbnails")
public:
    using QObject::QObject;

    virtual Media::State state(const Location &url) const = 0;
    // Null unless Ready. The same picture keeps its QImage::cacheKey.
    virtual QImage picture(const Location &url) const = 0;
    // The picture is made while the answer lives; null when nothing needs to be done.
    [[nodiscard]] virtual std::unique_ptr<PreviewRequest> request(const Location &url) = 0;

    // The same for one of the frames that follow the pointer over a video (Media::scrubFrame).
    virtual QImage scrubFrame(const Location &url, int bucket) const = 0;
    [[nodiscard]] virtual std::unique_ptr<PreviewRequest> requestScrubFrame(const Location &url,
                                                                            int bucket) = 0;

    // A Ready sound has these instead of a picture; none for everything else.
    virtual WaveformPeaks waveform(const Location &url) const = 0;
    // Empty when unknown.
    virtual std::optional<MediaInfo> info(const Location &url) const = 0;

    // Has the item request its picture at the end of this pass of the event loop. Those of one pass do so in
    // the order in which they lie: the scene graph polishes them in the reverse one.
    void requestInOrder(ThumbnailItem &item);

    ThumbnailScaler &scaler() { return m_scaler; }
    // Painted once for all files that look alike.
    QImage placeholder(const PlaceholderLook &look, const ThumbnailShape &shape);

Q_SIGNALS:
    // State or picture of this file changed.
    void changed(const cratewell::Location &url);
    void scrubFrameChanged(const cratewell::Location &url, int bucket);
    void infoChanged(const cratewell::Location &url);

private:
    struct PaintedPlaceholder
    {
        PlaceholderLook look;
        ThumbnailShape shape;
        QImage picture;
    };

    void requestNow();

    ThumbnailScaler m_scaler;
    std::vector<QPointer<ThumbnailItem>> m_requesting;
    std::vector<PaintedPlaceholder> m_placeholders;
};

// The grid thumbnails and waveforms of the vault's assets, each looked up afresh, so that a rewritten file
// gets the picture of its newest version. (The QML tools find a base by its full name only.)
class VaultThumbnails : public cratewell::ThumbnailProvider
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
public:
    VaultThumbnails(const Vault &vault, Media &media);
    static VaultThumbnails *create(QQmlEngine *engine, QJSEngine *);

    Media::State state(const Location &url) const override;
    QImage picture(const Location &url) const override;
    std::unique_ptr<PreviewRequest> request(const Location &url) override;
    QImage scrubFrame(const Location &url, int bucket) const override;
    std::unique_ptr<PreviewRequest> requestScrubFrame(const Location &url, int bucket) override;
    WaveformPeaks waveform(const Location &url) const override;
    std::optional<MediaInfo> info(const Location &url) const override;

private:
    const Asset *find(const Location &url) const;

    const Vault &m_vault;
    Media &m_media;
};

} // namespace cratewell
