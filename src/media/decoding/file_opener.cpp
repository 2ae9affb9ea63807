#include "media/decoding/file_opener.h"

#include <QPromise>
#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

constexpr int mostOpening = 32;
std::atomic<int> opening = 0;

tl::unexpected<DecodeFailure> failure(int code, const Location &file)
{
    using Fault = DecodeFailure::Fault;
    constexpr std::array ofSystem{EMFILE, ENFILE, ENOMEM, EIO, ESTALE, ETIMEDOUT, ENOTCONN};
    const bool mayPass = std::ranges::find(ofSystem, code) != ofSystem.end();
    return tl::unexpected(
        DecodeFailure(Error::fromErrno(code, file.name()), mayPass ? Fault::OfSystem : Fault::OfFile));
}

OpenedFile openNow(const Location &file)
{
    int descriptor = -1;
    do
        descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0)
        return failure(errno, file);
    auto opened = std::make_shared<const OpenFile>(descriptor);

    struct stat info = {};
    if (fstat(descriptor, &info) != 0)
        return failure(errno, file);
    if (!S_ISREG(info.st_mode))
        return tl::unexpected(DecodeFailure(Error{file.name() + u": not a file"_s}));
    return opened;
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

OpenFile::~OpenFile()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
}

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
