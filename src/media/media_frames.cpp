#include "media/media_private.h"
#include "media/previews/preview_formats.h"

#include <QPromise>

namespace cratewell {

namespace {

constexpr int filmstripSide = 220; // pixels

// One frame after the other: a strip shall not take every worker.
struct Strip
{
    Location url;
    int count = 0;
    QList<QImage> images;
    QPromise<QList<QImage>> promise;
};

} // namespace

QFuture<QImage> Media::frame(const Location &url, double fraction, int maxSide)
{
    struct Job
    {
        QPromise<QImage> promise;
        std::unique_ptr<PreviewRequest> request;
    };
    const auto job = std::make_shared<Job>();
    job->promise.start();
    const auto finished = [job](const DecodeResult &result) {
        job->promise.addResult(result ? result->image : QImage());
        job->promise.finish();
        job->request.reset();
    };
    const RequestPlace place = d->order.next();
    job->request = d->pool.submit({.key = url.bytes() + "/frame " + QByteArray::number(place.number),
                                   .request = singleFrame(url, fraction, maxSide),
                                   .place = place,
                                   .finished = finished});
    return job->promise.future();
}

QFuture<QList<QImage>> Media::filmstrip(const Location &url, int count)
{
    const auto strip = std::make_shared<Strip>();
    strip->url = url;
    strip->count = std::max(0, count);
    strip->promise.start();
    const auto next = [this, strip](const auto &self, int index) -> void {
        if (index == strip->count) {
            strip->promise.addResult(strip->images);
            strip->promise.finish();
            return;
        }
        frame(strip->url, (index + 0.5) / strip->count, filmstripSide)
            .then(this, [strip, self, index](const QImage &image) {
                if (!image.isNull())
                    strip->images.append(image);
                self(self, index + 1);
            });
    };
    next(next, 0);
    return strip->promise.future();
}

} // namespace cratewell
