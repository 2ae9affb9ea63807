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

constexpr std::chrono::seconds slowCheckInterval(4);

struct TreeDigest
{
    // Of every visible folder's listing, by path.
    QHash<QByteArray, quint64> digests;
    FileEvents::Time newestChange;
};

// `entrances`: the root, and what is followed in it also when it is a link.
TreeDigest digestOf(const std::vector<QByteArray> &entrances, const std::atomic<bool> &interrupted)
{
    TreeDigest tree;
    std::vector<QByteArray> waiting = entrances;
    while (!waiting.empty() && !interrupted) {
        const QByteArray path = std::move(waiting.back());
        waiting.pop_back();
        if (tree.digests.contains(path))
            continue;
        const bool mayBeLink = std::ranges::find(entrances, path) != entrances.end();
        const Links links = mayBeLink ? Links::Follow : Links::NoFollow;
        const Result<FolderListing> listing = FolderListing::read(path, FolderListing::Detail::Digest, links);
        if (!listing)
            continue;
        tree.digests.insert(path, listing->digest);
        tree.newestChange = std::max(tree.newestChange, listing->changed);
        for (const QByteArray &name : listing->folders)
            waiting.push_back(Location::fromStandardized(path).child(name).bytes());
    }
    return tree;
}

QStringList pathsOf(const TreeDigest &tree)
{
    QStringList paths;
    paths.reserve(tree.digests.size());
    for (auto folder = tree.digests.keyBegin(); folder != tree.digests.keyEnd(); ++folder)
        paths += textFromBytes(*folder);
    return paths;
}

} // namespace

struct WatcherFileEvents::Private
{
    explicit Private(WatcherFileEvents &owner) : q(owner), throttle([&owner] { Q_EMIT owner.changed(); }) {}

    void check();
    void take(const TreeDigest &now);
    void follow(const QStringList &now);

    WatcherFileEvents &q;
    ChangeThrottle throttle;
    QFileSystemWatcher watcher;
    QTimer timer;
    std::vector<QByteArray> entrances; // the root first; nothing is followed while there are none
    Time since;
    // Nothing before the first look at a root.
    std::optional<TreeDigest> tree;
    quint64 generation = 0;
    bool checking = false;
    bool again = false;
    std::atomic<bool> interrupted = false;
    QThreadPool worker;
};

void WatcherFileEvents::Private::check()
{
    again = checking;
    if (checking || entrances.empty())
        return;
    checking = true;
    interrupted = false;
    worker.start([this, places = entrances, asked = generation] {
        TreeDigest now = digestOf(places, interrupted);
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

void WatcherFileEvents::Private::take(const TreeDigest &now)
{
    const std::optional<TreeDigest> before = std::exchange(tree, now);
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
    d->timer.setInterval(slowCheckInterval);
    connect(&d->timer, &QTimer::timeout, this, [this] { d->check(); });
    connect(&d->watcher, &QFileSystemWatcher::directoryChanged, this, [this] { d->check(); });
}

WatcherFileEvents::~WatcherFileEvents()
{
    d->interrupted = true;
    d->worker.waitForDone();
}

void WatcherFileEvents::watch(const Location &root, const std::vector<QByteArray> &entries, Time since)
{
    stop();
    if (!root.isEmpty())
        d->entrances.push_back(root.bytes());
    for (const QByteArray &name : entries)
        d->entrances.push_back(root.child(name).bytes());
    d->since = since;
    d->check();
}

void WatcherFileEvents::stop()
{
    ++d->generation;
    d->interrupted = true;
    d->entrances.clear();
    d->tree.reset();
    d->throttle.reset();
    d->timer.stop();
    d->follow({});
}

} // namespace cratewell
