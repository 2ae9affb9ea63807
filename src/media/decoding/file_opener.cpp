#include "media/decoding/file_opener.h"

#include "platform/posix/file_content.h"

#include <QPromise>
#include <atomic>
#include <system_error>
#include <thread>

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

constexpr int mostOpening = 32;
std::atomic<int> opening = 0;

OpenedFile openNow(const Location &file)
{
    return openRegularFile(file, Links::Follow).map_error(&DecodeFailure::ofReading);
}

QFuture<OpenedFile> refused(const QString &reason)
{
    QPromise<OpenedFile> promise;
    promise.start();
    promise.addResult(tl::unexpected(DecodeFailure(Error{reason}, DecodeFailure::Fault::OfSystem)));
    promise.finish();
    return promise.future();
}

} // namespace

QFuture<OpenedFile> openForReading(const Location &file)
{
    const QString silent = file.name() + u": the disk does not answer"_s;
    if (opening.fetch_add(1) >= mostOpening) {
        --opening;
        return refused(silent);
    }
    QPromise<OpenedFile> promise;
    QFuture<OpenedFile> future = promise.future();
    promise.start();
    try {
        std::thread([file, promise = std::move(promise)]() mutable {
            OpenedFile opened = openNow(file);
            --opening;
            promise.addResult(std::move(opened));
            promise.finish();
        }).detach();
    } catch (const std::system_error &) {
        --opening;
        return refused(silent);
    }
    return future;
}

} // namespace cratewell
