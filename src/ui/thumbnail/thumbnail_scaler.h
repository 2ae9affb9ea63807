#pragma once

#include <QCache>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QThreadPool>
#include <functional>
#include <memory>

namespace cratewell {

// Which part of a picture is seen: its middle, filling the shape, or all of it, with margins.
enum class PictureFit : quint8 { Cover, Contain };

// How a picture is to lie on the screen, in device pixels.
struct ThumbnailShape
{
    QSize size;
    int radius = 0; // of the rounded corners
    PictureFit fit = PictureFit::Cover;

    friend bool operator==(const ThumbnailShape &, const ThumbnailShape &) = default;
    friend size_t qHash(const ThumbnailShape &shape, size_t seed = 0)
    {
        return qHashMulti(seed, shape.size.width(), shape.size.height(), shape.radius, int(shape.fit));
    }
};

// A picture scaled into the shape, on a dark checkerboard where it is transparent, on black where it does not
// reach; corners cut; premultiplied. Null when either is empty.
QImage scaledThumbnail(const QImage &picture, const ThumbnailShape &shape);

// Cuts pictures into shape on its own threads, in the order of the requests, and remembers the results (64
// MB). Main thread; outlives whoever asks.
class ThumbnailScaler : public QObject
{
    Q_OBJECT
public:
    explicit ThumbnailScaler(QObject *parent = nullptr);
    ~ThumbnailScaler() override;

    // What was cut before; null when it was not or is forgotten.
    QImage ready(const QImage &picture, const ThumbnailShape &shape) const;

    // Dropping the ticket calls the work off: `done` is called on the main thread, at most once, only while
    // the ticket lives.
    using Ticket = std::shared_ptr<void>;
    [[nodiscard]] Ticket cut(const QImage &picture, const ThumbnailShape &shape,
                             std::function<void(const QImage &)> done);

private:
    struct Key
    {
        qint64 picture = 0; // QImage::cacheKey
        ThumbnailShape shape;
        friend bool operator==(const Key &, const Key &) = default;
        friend size_t qHash(const Key &key, size_t seed = 0)
        {
            return qHashMulti(seed, key.picture, key.shape);
        }
    };
    struct Request;

    QCache<Key, QImage> m_ready;
    QThreadPool m_pool;
};

} // namespace cratewell
