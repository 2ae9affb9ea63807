#include "ui/picture_cutter.h"

#include "ui/soft_mask.h"

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

QImage scaled(const QImage &picture, QSize size)
{
    return picture.convertToFormat(QImage::Format_ARGB32_Premultiplied)
        .scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QImage contained(const QImage &picture, QSize size)
{
    const QImage whole = scaled(picture, picture.size().scaled(size, Qt::KeepAspectRatio).expandedTo({1, 1}));
    QImage result(size, QImage::Format_ARGB32_Premultiplied);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    painter.drawImage((size.width() - whole.width()) / 2, (size.height() - whole.height()) / 2, whole);
    return result;
}

} // namespace

QImage cutPicture(const QImage &source, const PictureShape &shape)
{
    if (source.isNull() || shape.size.isEmpty())
        return {};
    QImage picture = source;
    picture.setDevicePixelRatio(1);
    QImage cut = shape.fit == PictureFit::Contain
                     ? contained(picture, shape.size)
                     : scaled(picture.copy(coverCrop(picture.size(), shape.size)), shape.size);
    if (shape.radius > 0) {
        QPainterPath outline;
        outline.addRoundedRect(QRectF(QPointF(), shape.size), shape.radius, shape.radius);
        keepInside(cut, coverage(outline, shape.size));
    }
    return cut;
}

struct PictureCutter::Wish
{
    std::atomic<bool> calledOff = false;
    std::function<void(const QImage &)> done;
};

PictureCutter::PictureCutter(QObject *parent) : QObject(parent), m_ready(rememberedKilobytes)
{
    m_pool.setMaxThreadCount(std::max(1, QThread::idealThreadCount() - 1));
}

PictureCutter::~PictureCutter()
{
    m_pool.clear();
    m_pool.waitForDone();
}

QImage PictureCutter::ready(const QImage &picture, const PictureShape &shape) const
{
    const QImage *found = m_ready.object({picture.cacheKey(), shape});
    return found ? *found : QImage();
}

PictureCutter::Ticket PictureCutter::cut(const QImage &picture, const PictureShape &shape,
                                         std::function<void(const QImage &)> done)
{
    auto wish = std::make_shared<Wish>();
    wish->done = std::move(done);
    const Ticket ticket(wish.get(), [wish](void *) {
        wish->calledOff = true;
        wish->done = nullptr;
    });
    const auto work = [this, wish, picture, shape] {
        if (wish->calledOff)
            return;
        QImage result = cutPicture(picture, shape);
        QMetaObject::invokeMethod(this, [this, wish, shape, key = picture.cacheKey(), result] {
            m_ready.insert({key, shape}, new QImage(result), std::max(1, int(result.sizeInBytes() / 1024)));
            if (const auto tell = std::exchange(wish->done, nullptr))
                tell(result);
        });
    };
    m_pool.start(work, ++m_newest);
    return ticket;
}

} // namespace cratewell
