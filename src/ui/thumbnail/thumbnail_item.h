#pragma once

#include "ui/thumbnail/thumbnail_provider.h"

#include <QPointer>
#include <QQuickItem>

namespace cratewell {

// The picture of one asset, filling the item with rounded corners, sharp to the device pixel; a placeholder
// until there is one. It asks its source for a picture only while it is active and visible, and takes the
// request back when it no longer is. Draws with an image node, so every scene graph back end shows it.
class ThumbnailItem : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(cratewell::ThumbnailProvider *source READ source WRITE setSource NOTIFY sourceChanged FINAL)
    Q_PROPERTY(cratewell::Location url READ url WRITE setUrl NOTIFY urlChanged FINAL)
    Q_PROPERTY(cratewell::AssetKind kind READ kind WRITE setKind NOTIFY kindChanged FINAL)
    // Lies where the user can see it.
    Q_PROPERTY(bool active READ isActive WRITE setActive NOTIFY activeChanged FINAL)
    Q_PROPERTY(qreal radius READ radius WRITE setRadius NOTIFY radiusChanged FINAL)
    // Shows the whole picture, with margins, rather than its middle.
    Q_PROPERTY(bool whole READ isWhole WRITE setWhole NOTIFY wholeChanged FINAL)
    // The font of the placeholders' signs.
    Q_PROPERTY(QString iconFamily READ iconFamily WRITE setIconFamily NOTIFY iconFamilyChanged FINAL)
    // The sign of the kind, as a ligature of such a font.
    Q_PROPERTY(QString kindIcon READ kindIcon NOTIFY kindChanged FINAL)
    // There is a picture and it is on the screen.
    Q_PROPERTY(bool shown READ isShown NOTIFY shownChanged FINAL)
    // Of a video's duration, 0 to 1: the frame there is shown instead, as soon as it is there. Negative for
    // the usual picture.
    Q_PROPERTY(qreal scrub READ scrub WRITE setScrub NOTIFY scrubChanged FINAL)
    // Of the video or sound, as "0:12"; empty while it is unknown.
    Q_PROPERTY(QString duration READ duration NOTIFY durationChanged FINAL)
public:
    explicit ThumbnailItem(QQuickItem *parent = nullptr);

    ThumbnailProvider *source() const { return m_source; }
    void setSource(ThumbnailProvider *source);
    const Location &url() const { return m_url; }
    void setUrl(const Location &url);
    AssetKind kind() const { return m_kind; }
    void setKind(AssetKind kind);
    bool isActive() const { return m_active; }
    void setActive(bool active);
    qreal radius() const { return m_radius; }
    void setRadius(qreal radius);
    bool isWhole() const { return m_fit == PictureFit::Contain; }
    void setWhole(bool whole);
    const QString &iconFamily() const { return m_iconFamily; }
    void setIconFamily(const QString &family);
    QString kindIcon() const { return cratewell::kindIcon(m_kind); }
    bool isShown() const { return m_drawn == Drawn::Picture; }
    qreal scrub() const { return m_scrub; }
    void setScrub(qreal fraction);
    const QString &duration() const { return m_duration; }
    // For the source, when it is this item's turn.
    void requestPicture();

Q_SIGNALS:
    void sourceChanged();
    void urlChanged();
    void kindChanged();
    void activeChanged();
    void radiusChanged();
    void wholeChanged();
    void iconFamilyChanged();
    void shownChanged();
    void scrubChanged();
    void durationChanged();

protected:
    QSGNode *updatePaintNode(QSGNode *old, UpdatePaintNodeData *data) override;
    void updatePolish() override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;
    void geometryChange(const QRectF &now, const QRectF &before) override;

private:
    ThumbnailShape shape() const;
    void forget();
    void withdrawIfUnseen();
    void showPicture(const QImage &picture, const ThumbnailShape &wanted);
    bool showScrubFrame(const ThumbnailShape &wanted);
    void takeDuration();
    void showPlaceholder(PlaceholderLook::Sign sign, const ThumbnailShape &wanted);
    enum class Drawn : quint8 { Nothing, Placeholder, Picture };
    void draw(const QImage &image, const ThumbnailShape &cutTo, Drawn what);
    bool needsPicture(const ThumbnailShape &wanted) const;

    QPointer<ThumbnailProvider> m_source;
    Location m_url;
    AssetKind m_kind = AssetKind::Video;
    bool m_active = true;
    qreal m_radius = 0;
    PictureFit m_fit = PictureFit::Cover;
    QString m_iconFamily;

    qreal m_scrub = -1;
    QString m_duration;

    std::unique_ptr<PreviewRequest> m_request;
    std::unique_ptr<PreviewRequest> m_frameRequest;
    int m_frame = -1; // that is shown, or asked for
    ThumbnailScaler::Ticket m_ticket;
    QImage m_image; // what is drawn
    ThumbnailShape m_cutTo;
    Drawn m_drawn = Drawn::Nothing;
    bool m_outdated = false; // the file was written again since
    bool m_imageChanged = false;
};

} // namespace cratewell
