#include "vault/vault.h"

#include "platform/defaults.h"
#include "vault/files/vault_structure.h"
#include "vault/vault_private.h"

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::milliseconds coalescingDelay{300};
constexpr std::chrono::seconds purgeInterval{3600};
constexpr std::chrono::seconds longestRetry{300};

} // namespace

Vault::Private::Private(Vault &vault, Location firstRoot, Defaults &store,
                        std::unique_ptr<FileEvents> fileEvents)
    : q(vault), root(std::move(firstRoot)), defaults(store), events(std::move(fileEvents)), worker([this] {
          QMetaObject::invokeMethod(
              &q, [this] { takeResult(); }, Qt::QueuedConnection);
      })
{
}

void Vault::Private::startScan()
{
    scanning = true;
    waiting = false;
    rootChanged = false;
    scanStarted = std::chrono::system_clock::now();
    worker.start(root, snapshot);
}

void Vault::Private::takeResult()
{
    std::optional<ScanWorker::Result> result = worker.takeResult();
    const bool newer = result && !rootChanged && (!published || result->diff.after != snapshot);
    scanning = false;
    if (result && !rootChanged)
        result->complete ? forgetRetry() : retryLater();
    if (!rootChanged && !following)
        follow();
    if (newer) {
        published = true;
        snapshot = result->diff.after;
    }
    if (waiting)
        startScan();
    if (newer) {
        Q_EMIT q.rescanned(result->diff);
        worker.release(std::move(result->diff));
    }
}

// A disk that cannot be read now may be readable later; one that stays so is asked less and less often.
void Vault::Private::retryLater()
{
    retrying.start(retryDelay);
    retryDelay = std::min(2 * retryDelay, longestRetry);
}

void Vault::Private::forgetRetry()
{
    retrying.stop();
    retryDelay = firstRetry;
}

// Only after the first scan: both read every folder, and the user waits for the scan.
void Vault::Private::follow()
{
    following = true;
    std::vector<QByteArray> categories;
    categories.reserve(allCategories.size());
    for (const VaultCategory category : allCategories)
        categories.push_back(categoryFolder(root, category).nameBytes().toByteArray());
    events->watch(root, categories, scanStarted);
}

Vault::Vault(Location root, Defaults &defaults, std::unique_ptr<FileEvents> events)
    : d(std::make_unique<Private>(*this, std::move(root), defaults, std::move(events)))
{
    d->coalescing.setSingleShot(true);
    d->coalescing.setTimerType(Qt::PreciseTimer);
    d->coalescing.setInterval(coalescingDelay);
    connect(&d->coalescing, &QTimer::timeout, this, &Vault::rescan);
    connect(d->events.get(), &FileEvents::changed, this, [this] {
        if (!d->coalescing.isActive())
            d->coalescing.start();
    });
    const auto reportLimit = [this] {
        Q_EMIT toast(u"This vault has more folders than the system can follow at once. "
                     u"Changes may take a few seconds to appear."_s,
                     true);
    };
    connect(d->events.get(), &FileEvents::limitReached, this, reportLimit, Qt::SingleShotConnection);
    d->retrying.setSingleShot(true);
    connect(&d->retrying, &QTimer::timeout, this, &Vault::rescan);
    d->purging.setInterval(purgeInterval);
    connect(&d->purging, &QTimer::timeout, this, &Vault::purgeExpired);
}

Vault::~Vault() = default;

void Vault::start(StartupMaintenance maintenance)
{
    ensureVaultStructure(d->root, d->defaults);
    d->openTrash(maintenance);
    if (maintenance == StartupMaintenance::Run)
        d->purging.start();
    rescan();
}

void Vault::changeRoot(const Location &root)
{
    d->root = root;
    d->published = false;
    d->rootChanged = true;
    d->worker.cancel();
    d->queue.cancelAll();
    Q_EMIT rootChanged(root);
    d->events->stop();
    d->following = false;
    d->coalescing.stop();
    d->forgetRetry();
    start();
    Q_EMIT opened();
}

bool Vault::isScanned() const
{
    return d->published;
}

void Vault::rescan()
{
    if (d->scanning)
        d->waiting = true;
    else
        d->startScan();
}

const Location &Vault::root() const
{
    return d->root;
}

const std::shared_ptr<const VaultSnapshot> &Vault::snapshot() const
{
    return d->snapshot;
}

QString Vault::lastError() const
{
    return d->lastError;
}

qint64 Vault::totalSize() const
{
    return d->snapshot->totalSize();
}

Location Vault::categoryUrl(VaultCategory category) const
{
    return categoryFolder(d->root, category);
}

bool Vault::isCategoryRoot(const Location &place) const
{
    return cratewell::isCategoryRoot(d->root, place);
}

} // namespace cratewell
