#include "platform/mac/watcher_file_events.h"

#include "platform/internal/change_throttle.h"
#include "platform/internal/folder_listing.h"

#include <QFileSystemWatcher>
#include <QHash>
#include <QSet>
#include <QThreadPool>
#include <atomic>

namespace cratewell {

namespace {

constexpr std::chrono::seconds checkInterval(4);

struct Picture
{
    // Of every visible folder's listing, by path.
    QHash<QByteArray, quint64> digests;
    FileEvents::Time newestChange;
};

Picture pictureOf(const Location &root, const std::atomic<bool> &interrupted)
{
    Picture picture;
    std::vector<QByteArray> waiting = {root.bytes()};
    while (!waiting.empty() && !interrupted) {
        const QByteArray path = std::move(waiting.back());
        waiting.pop_back();
        const auto links = path == root.bytes() ? FolderListing::Links::Follow : FolderListing::Links::Keep;
        const FolderListing listing = FolderListing::read(path, FolderListing::Detail::Digest, links);
        if (!listing.opened)
            continue;
        picture.digests.insert(path, listing.digest);
        picture.newestChange = std::max(picture.newestChange, listing.changed);
        for (const QByteArray &name : listing.folders)
            waiting.push_back(Location::fromStandardized(path).child(name).bytes());
    }
    return picture;
}

QStringList pathsOf(const Picture &picture)
{
    QStringList paths;
    paths.reserve(picture.digests.size());
    for (auto folder = picture.digests.keyBegin(); folder != picture.digests.keyEnd(); ++folder)
        paths += textFromBytes(*folder);
    return paths;
}

} // namespace

struct WatcherFileEvents::Private
{
    explicit Private(WatcherFileEvents &owner) : q(owner), throttle([&owner] { Q_EMIT owner.changed(); }) {}

    void check();
    void take(const Picture &now);
    void follow(const QStringList &now);

    WatcherFileEvents &q;
    ChangeThrottle throttle;
    QFileSystemWatcher watcher;
    QTimer timer;
    Location root;
    Time since;
    // Nothing before the first look at a root.
    std::optional<Picture> picture;
    quint64 generation = 0;
    bool checking = false;
    bool again = false;
    std::atomic<bool> interrupted = false;
    QThreadPool worker;
};

void WatcherFileEvents::Private::check()
{
    again = checking;
    if (checking || root.isEmpty())
        return;
    checking = true;
    interrupted = false;
    worker.start([this, place = root, asked = generation] {
        Picture now = pictureOf(place, interrupted);
        QMetaObject::invokeMethod(
            &q,
            [this, now = std::move(now), asked] {
                checking = false;
                if (asked == generation)
                    take(now);
                if (again)
                    check();
            },
            Qt::QueuedConnection);
    });
}

void WatcherFileEvents::Private::take(const Picture &now)
{
    const std::optional<Picture> before = std::exchange(picture, now);
    follow(pathsOf(now));
    if (before ? before->digests != now.digests : now.newestChange >= since - FolderListing::clockSlack)
        throttle.notice();
    timer.start();
}

void WatcherFileEvents::Private::follow(const QStringList &now)
{
    const QStringList before = watcher.directories();
    const QSet<QString> wanted(now.begin(), now.end());
    const QSet<QString> watched(before.begin(), before.end());
    const QStringList gone = (watched - wanted).values();
    const QStringList added = (wanted - watched).values();
    if (!gone.isEmpty())
        watcher.removePaths(gone);
    if (!added.isEmpty())
        watcher.addPaths(added);
}

WatcherFileEvents::WatcherFileEvents() : d(std::make_unique<Private>(*this))
{
    d->worker.setMaxThreadCount(1);
    d->timer.setSingleShot(true);
    d->timer.setInterval(checkInterval);
    connect(&d->timer, &QTimer::timeout, this, [this] { d->check(); });
    connect(&d->watcher, &QFileSystemWatcher::directoryChanged, this, [this] { d->check(); });
}

WatcherFileEvents::~WatcherFileEvents()
{
    d->interrupted = true;
    d->worker.waitForDone();
}

void WatcherFileEvents::watch(const Location &root, Time since)
{
    stop();
    d->root = root;
    d->since = since;
    d->check();
}

void WatcherFileEvents::stop()
{
    ++d->generation;
    d->interrupted = true;
    d->root = {};
    d->picture.reset();
    d->throttle.reset();
    d->timer.stop();
    d->follow({});
}

} // namespace cratewell
