#include "platform/json_defaults.h"

#include "platform/posix/file_content.h"
#include "platform/posix/replace_file.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <thread>

namespace cratewell {

namespace {

// A slider that is being dragged costs this many writes at most, not one a step.
constexpr std::chrono::milliseconds pauseBetweenWrites(100);
constexpr qint64 largestFile = 64 << 20;

} // namespace

class JsonDefaults::Private
{
public:
    explicit Private(Location place) : file(std::move(place)) {}

    void load();
    void changed();
    void write(const QJsonObject &snapshot) const;
    void writeUntilStopped();

    const Location file;
    // The main thread reads without the lock: it alone changes the object.
    QJsonObject values;

    std::mutex mutex;
    std::condition_variable wake;
    std::condition_variable settled;
    quint64 newest = 0;
    quint64 tried = 0;
    bool hurry = false;
    bool stopping = false;
    bool mayWrite = true;
    std::thread writer;
};

void JsonDefaults::Private::load()
{
    removeAbandonedTemporaries(file);
    const Result<QByteArray> content = readBounded(file, largestFile, Links::Follow);
    if (!content && (content.error().is(ENOENT) || content.error().is(ENOTDIR)))
        return;
    const QJsonDocument document = content ? QJsonDocument::fromJson(*content) : QJsonDocument();
    if (document.isObject())
        values = document.object();
    else if ((mayWrite = keepAside(file).has_value()))
        ::unlink(file.c_str()); // so that the next start keeps no second one
}

void JsonDefaults::Private::changed()
{
    ++newest;
    wake.notify_one();
}

// What cannot be written stays in memory; the next change tries again.
void JsonDefaults::Private::write(const QJsonObject &snapshot) const
{
    std::error_code failure;
    std::filesystem::create_directories(file.parent().c_str(), failure);
    [[maybe_unused]] const Result<void> written =
        replaceAtomically(file, QJsonDocument(snapshot).toJson(), {.flush = Flush::Yes});
}

void JsonDefaults::Private::writeUntilStopped()
{
    std::unique_lock lock(mutex);
    while (true) {
        wake.wait(lock, [this] { return stopping || newest != tried; });
        if (newest == tried)
            return;
        const quint64 snapshotNumber = newest;
        const QJsonObject snapshot = values;
        lock.unlock();
        if (mayWrite)
            write(snapshot);
        lock.lock();
        tried = snapshotNumber;
        settled.notify_all();
        wake.wait_for(lock, pauseBetweenWrites, [this] { return stopping || hurry; });
    }
}

JsonDefaults::JsonDefaults(Location file) : d(std::make_unique<Private>(file.resolved()))
{
    d->load();
    d->writer = std::thread([this] { d->writeUntilStopped(); });
}

JsonDefaults::~JsonDefaults()
{
    {
        const std::lock_guard lock(d->mutex);
        d->stopping = true;
    }
    d->wake.notify_one();
    d->writer.join();
}

QJsonValue JsonDefaults::value(const QString &key) const
{
    return d->values.value(key);
}

void JsonDefaults::setValue(const QString &key, const QJsonValue &value)
{
    if (d->values.value(key) == value)
        return;
    const std::lock_guard lock(d->mutex);
    d->values.insert(key, value);
    d->changed();
}

void JsonDefaults::remove(const QString &key)
{
    if (!d->values.contains(key))
        return;
    const std::lock_guard lock(d->mutex);
    d->values.remove(key);
    d->changed();
}

void JsonDefaults::drain()
{
    std::unique_lock lock(d->mutex);
    const quint64 wanted = d->newest;
    d->hurry = true;
    d->wake.notify_one();
    d->settled.wait(lock, [this, wanted] { return d->tried >= wanted; });
    d->hurry = false;
}

} // namespace cratewell
