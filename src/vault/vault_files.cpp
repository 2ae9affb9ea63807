#include "vault/item_name.h"
#include "vault/vault_private.h"

namespace cratewell {

using namespace Qt::StringLiterals;

namespace {

constexpr size_t mostRecentImports = 40;

// "1 item", "2 items".
QString counted(qsizetype count, const QString &what)
{
    return QString::number(count) + u' ' + what + (count == 1 ? u""_s : u"s"_s);
}

} // namespace

void Vault::Private::change(const QString &title, DiskPart disk, MainPart after, const Location &destination)
{
    const auto work = [this, files = files, disk = std::move(disk),
                       after = std::move(after)](OperationProgress &monitor) -> FileQueue::Effects {
        if (!files->isOpen())
            files->open();
        const FileOperations::Outcome outcome =
            monitor.canceled ? FileOperations::Outcome() : disk(*files, monitor);
        return [this, files, outcome, trashNow = files->trash(), after] {
            if (files->root() != root)
                return;
            reportFailure(outcome.error);
            if (trashNow != trash) {
                trash = trashNow;
                Q_EMIT q.trashItemsChanged();
            }
            after(outcome);
        };
    };
    queue.add(title, work, destination);
}

void Vault::Private::openTrash(StartupMaintenance maintenance)
{
    files = std::make_shared<FileOperations>(root, maintenance);
    if (maintenance == StartupMaintenance::Run)
        q.purgeExpired();
    else
        change(
            {}, [](FileOperations &, OperationProgress &) { return FileOperations::Outcome(); },
            [](const FileOperations::Outcome &) {});
}

void Vault::Private::reportFailure(const QString &error)
{
    if (error.isEmpty())
        return;
    lastError = error;
    Q_EMIT q.lastErrorChanged();
}

void Vault::createFolder(const QString &name, const Location &parent, FolderCreated done)
{
    const QString cleaned = cleanedName(name);
    if (cleaned.isEmpty()) {
        if (done)
            done({});
        return;
    }
    d->change(
        {},
        [parent, cleaned](FileOperations &work, OperationProgress &) {
            return work.createFolder(parent, cleaned);
        },
        [this, done = std::move(done)](const FileOperations::Outcome &outcome) {
            const bool made = !outcome.placed.empty();
            if (made)
                rescan();
            if (done)
                done(made ? std::optional(outcome.placed.front()) : std::nullopt);
        });
}

void Vault::rename(const Location &item, const QString &name)
{
    const QString cleaned = cleanedName(name);
    const Location destination = item.parent().child(cleaned);
    if (cleaned.isEmpty() || isCategoryRoot(item) || destination == item)
        return;
    d->change(
        {},
        [item, destination](FileOperations &work, OperationProgress &) {
            return work.rename(item, destination);
        },
        [this, item, destination](const FileOperations::Outcome &outcome) {
            if (outcome.count > 0)
                Q_EMIT itemRenamed(item, destination);
            rescan();
        });
}

void Vault::move(const std::vector<Location> &items, const Location &folder)
{
    d->change(
        tr("Moving"),
        [items, folder](FileOperations &work, OperationProgress &monitor) {
            return work.move(items, folder, monitor);
        },
        [this, folder](const FileOperations::Outcome &outcome) {
            Q_EMIT itemsMoved();
            rescan();
            if (outcome.count > 0)
                Q_EMIT toast(u"Moved %1 to %2"_s.arg(counted(outcome.count, u"item"_s), folder.name()), true);
        });
}

std::vector<FolderChoice> Vault::flatFolders(const std::optional<QSet<AssetKind>> &kinds) const
{
    std::vector<FolderChoice> choices;
    const auto walk = [&choices](const auto &self, const FolderNode &node, int depth,
                                 VaultCategory category) -> void {
        choices.push_back({node.url, depth, category});
        for (const FolderNode &child : node.children)
            self(self, child, depth + 1, category);
    };
    for (const VaultCategory category : allCategories) {
        const auto accepted = [category](AssetKind kind) { return accepts(category, kind); };
        const FolderNode *tree = d->snapshot->tree(category);
        if (tree && (!kinds || std::all_of(kinds->begin(), kinds->end(), accepted)))
            walk(walk, *tree, 0, category);
    }
    return choices;
}

const std::vector<TrashItem> &Vault::trashItems() const
{
    return d->trash;
}

void Vault::moveToTrash(const std::vector<Location> &items)
{
    for (const Location &item : items)
        d->queue.cancelFilling(item);
    d->change(
        tr("Moving to Trash"),
        [items](FileOperations &work, OperationProgress &monitor) { return work.trash(items, monitor); },
        [this](const FileOperations::Outcome &outcome) {
            if (!outcome.trashed.empty())
                Q_EMIT itemsTrashed(outcome.trashed);
            rescan();
            if (outcome.count > 0)
                Q_EMIT toast(
                    u"Moved %1 to Trash. They're kept for %2 days."_s.arg(counted(outcome.count, u"item"_s))
                        .arg(trashRetentionDays),
                    true, outcome.trashed);
        });
}

void Vault::restore(const std::vector<TrashItem> &items)
{
    d->change(
        tr("Restoring"),
        [items](FileOperations &work, OperationProgress &monitor) { return work.restore(items, monitor); },
        [this, asked = qsizetype(items.size())](const FileOperations::Outcome &) {
            rescan();
            Q_EMIT toast(u"Restored "_s + counted(asked, u"item"_s), true);
        });
}

void Vault::deleteForever(const std::vector<TrashItem> &items)
{
    d->change(
        tr("Deleting"),
        [items](FileOperations &work, OperationProgress &monitor) {
            return work.removeForever(items, monitor);
        },
        [](const FileOperations::Outcome &) {});
}

void Vault::purgeExpired()
{
    d->change(
        tr("Deleting"),
        [](FileOperations &work, OperationProgress &monitor) {
            work.purge(secondsNow(), monitor);
            return FileOperations::Outcome();
        },
        [](const FileOperations::Outcome &) {});
}

void Vault::importItems(const std::vector<Location> &items, const std::optional<Location> &into,
                        ImportMode mode)
{
    d->change(
        tr("Importing"),
        [items, into, mode](FileOperations &work, OperationProgress &monitor) {
            return work.import(items, into, mode, monitor);
        },
        [this](const FileOperations::Outcome &outcome) {
            if (!outcome.placed.empty()) {
                std::vector<Location> recent(outcome.placed.rbegin(), outcome.placed.rend());
                recent.insert(recent.end(), d->recentImports.begin(), d->recentImports.end());
                recent.resize(std::min(recent.size(), mostRecentImports));
                d->recentImports = std::move(recent);
                Q_EMIT recentImportsChanged();
            }
            rescan();
            if (outcome.count > 0)
                Q_EMIT toast(u"Added %1 to the vault"_s.arg(counted(outcome.count, u"asset"_s)), true);
        },
        into.value_or(Location()));
}

const std::vector<Location> &Vault::recentImports() const
{
    return d->recentImports;
}

FileProgress &Vault::progress() const
{
    return d->progress;
}

void Vault::drain()
{
    d->queue.drain();
}

} // namespace cratewell
