#include "ui/thumbnail/thumbnail_scaler.h"

#include "ui/thumbnail/alpha_mask.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <utility>

namespace cratewell {

namespace {

constexpr int rememberedKilobytes = 64 * 1024;

// The largest part of `source` with the proportions of `target`, in the middle.
QRect coverCrop(QSize source, QSize target)
{
    const QSizeF part = QSizeF(target).scaled(source, Qt::KeepAspectRatio);
    const QSize size(std::clamp(int(std::lround(part.width())), 1, source.width()),
                     std::clamp(int(std::lround(part.height())), 1, source.height()));
    return {QPoint((source.width() - size.width()) / 2, (source.height() - size.height()) / 2), size};
}

// What shows through a picture, in dark tones: light effects are meant for dark ground.
void drawCheckerboard(QPainter &painter, const QRect &place)
{
    constexpr QColor tones[]{QColor(0x16, 0x16, 0x1b), QColor(0x20, 0x20, 0x27)};
    const int side = std::max(4, place.height() / 14);
    for (int y = 0; y * side < place.height(); ++y) {
        for (int x = 0; x * side < place.width(); ++x)
            painter.fillRect(QRect(place.x() + x * side, place.y() + y * side, side, side) & place,
                             tones[(x + y) % 2]);
    }
}

// Where the picture, or the part of it that is seen, lies in the shape.
QRect placeIn(const ThumbnailShape &shape, QSize part)
{
    if (shape.fit == PictureFit::Cover)
        return {QPoint(), shape.size};
    const QSize size = part.scaled(shape.size, Qt::KeepAspectRatio).expandedTo({1, 1});
    // A margin that only rounding left would look like a fault.
    if (shape.size.width() - size.width() <= 2 && shape.size.height() - size.height() <= 2)
        return {QPoint(), shape.size};
    return {QPoint((shape.size.width() - size.width()) / 2, (shape.size.height() - size.height()) / 2), size};
}

} // namespace

QImage scaledThumbnail(const QImage &picture, const ThumbnailShape &shape)
{
    if (picture.isNull() || shape.size.isEmpty())
        return {};
    const QRect part =
        shape.fit == PictureFit::Cover ? coverCrop(picture.size(), shape.size) : picture.rect();
    const QRect place = placeIn(shape, part.size());
    QImage seen = picture.copy(part);
    seen.setDevicePixelRatio(1);
    if (seen.hasAlphaChannel())
        seen.convertTo(QImage::Format_ARGB32_Premultiplied);

    QImage cut(shape.size, QImage::Format_ARGB32_Premultiplied);
    cut.fill(Qt::black);
    QPainter painter(&cut);
    if (picture.hasAlphaChannel())
        drawCheckerboard(painter, place);
    painter.drawImage(place.topLeft(),
                      seen.scaled(place.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    painter.end();
    if (shape.radius > 0) {
        QPainterPath outline;
        outline.addRoundedRect(QRectF(QPointF(), shape.size), shape.radius, shape.radius);
        keepInside(cut, coverage(outline, shape.size));
    }
    return cut;
}

struct ThumbnailScaler::Request
{
    std::atomic<bool> calledOff = false;
    std::function<void(const QImage &)> done;
};

ThumbnailScaler::ThumbnailScaler(QObject *parent) : QObject(parent), m_ready(rememberedKilobytes)
{
    m_pool.setMaxThreadCount(std::max(1, QThread::idealThreadCount() - 1));
}

ThumbnailScaler::~ThumbnailScaler()
{
    m_pool.clear();
    m_pool.waitForDone();
}

QImage ThumbnailScaler::ready(const QImage &picture, const ThumbnailShape &shape) const
{
    const QImage *found = m_ready.object({picture.cacheKey(), shape});
    return found ? *found : QImage();
}

ThumbnailScaler::Ticket ThumbnailScaler::cut(const QImage &picture, const ThumbnailShape &shape,
                                             std::function<void(const QImage &)> done)
{
    auto request = std::make_shared<Request>();
    request->done = std::move(done);
    const Ticket ticket(request.get(), [request](void *) {
        request->calledOff = true;
        request->done = nullptr;
    });
    const auto work = [this, request, picture, shape] {
        if (request->calledOff)
            return;
        QImage result = scaledThumbnail(picture, shape);
        QMetaObject::invokeMethod(this, [this, request, shape, key = picture.cacheKey(), result] {
            m_ready.insert({key, shape}, new QImage(result), std::max(1, int(result.sizeInBytes() / 1024)));
            if (const auto notify = std::exchange(request->done, nullptr))
                notify(result);
        });
    };
    m_pool.start(work);
    return ticket;
}

} // namespace cratewell
