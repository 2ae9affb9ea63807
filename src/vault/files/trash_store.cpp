#include "vault/files/trash_store.h"

#include "platform/posix/file_content.h"
#include "platform/posix/replace_file.h"
#include "vault/files/disk.h"
#include "vault/files/trash_index.h"
#include "vault/files/vault_folders.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace cratewell {

namespace {

constexpr qint64 largestIndex = qint64{256} << 20; // bytes; more is no index of ours

bool isSame(const FileStatus &a, const FileStatus &b)
{
    return a.device == b.device && a.inode == b.inode && a.size == b.size && a.modified == b.modified &&
           a.changed == b.changed;
}

// Programs change one index one after the other, until `folder` is closed. Not waiting for ever: another one
// may hang, and some file systems know no locks. What two at once then lose is adopted again.
void lockIndex(int folder)
{
    constexpr std::chrono::milliseconds step{20};
    constexpr int steps = 100;
    for (int i = 0; i < steps && ::flock(folder, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK; ++i)
        std::this_thread::sleep_for(step);
}

// What a slot holds: the one thing in it, beside what file managers and unfinished copies hide there.
std::optional<QByteArray> contentOf(const Location &slot)
{
    std::vector<QByteArray> names = disk::names(slot).value_or(std::vector<QByteArray>());
    std::erase_if(names, [](const QByteArray &name) { return isHiddenName(name); });
    return names.size() == 1 ? std::optional(names.front()) : std::nullopt;
}

// Moved in never, or moved back already. Only ENOENT says so; any other failure may pass.
bool isAtHome(const TrashItem &item, int folder)
{
    const Result<FileDescriptor> slot = openBeneath(folder, bytesFromText(item.id), O_RDONLY | O_DIRECTORY);
    const Result<FileStatus> stored =
        slot ? statusAt(slot->number(), bytesFromText(item.name).constData(), Links::NoFollow)
             : tl::unexpected(slot.error());
    return !stored && stored.error().is(ENOENT) && disk::exists(Location::fromText(item.original));
}

} // namespace

Result<void> TrashStore::load()
{
    const Result<FileDescriptor> folder = openVaultFolder(m_root, trashFolder(m_root));
    if (folder)
        return load(folder->number());
    return folder.error().is(ENOENT) ? Result<void>() : tl::unexpected(folder.error());
}

Result<void> TrashStore::load(int folder)
{
    // Listed before the index is read: another program writes the record before it makes the slot.
    const Result<std::vector<QByteArray>> names = disk::names(trashFolder(m_root));
    if (!names)
        return tl::unexpected(names.error());
    const std::vector<TrashItem> known = m_items;
    if (Result<void> read = readIndex(folder); !read)
        return read;
    QSet<QByteArray> recorded;
    for (const TrashItem &item : m_items)
        recorded.insert(bytesFromText(item.id));
    for (const QByteArray &name : *names) {
        if (!recorded.contains(name) && isSlotName(textFromBytes(name)))
            adopt(name, known, folder);
    }
    std::ranges::stable_sort(m_items, std::ranges::greater(), &TrashItem::deletedAt);
    return {};
}

Result<void> TrashStore::readIndex(int folder)
{
    const QByteArray name = trashIndexFile(m_root).nameBytes().toByteArray();
    const Result<FileStatus> status = statusAt(folder, name.constData(), Links::NoFollow);
    if (!status && !status.error().is(ENOENT))
        return tl::unexpected(status.error());
    if (status && m_index && isSame(*status, *m_index))
        return {};
    DecodedTrash decoded;
    if (status) {
        decoded.intact = status->isRegularFile() && status->size <= largestIndex;
        if (decoded.intact) {
            const Result<QByteArray> json =
                openRegularFileAt(folder, name, Links::NoFollow).and_then([](const FileDescriptor &index) {
                    return readBounded(index.number(), largestIndex);
                });
            if (!json)
                return tl::unexpected(json.error());
            decoded = decodeTrash(*json);
        }
    }
    m_items = std::move(decoded.items);
    m_damaged = !decoded.intact;
    m_index = status ? std::optional(*status) : std::nullopt;
    m_unsaved = false;
    return {};
}

void TrashStore::adopt(const QByteArray &slot, const std::vector<TrashItem> &known, int folder)
{
    const Result<FileStatus> status = statusAt(folder, slot.constData(), Links::NoFollow);
    const Location place = trashFolder(m_root).child(slot);
    const std::optional<QByteArray> content = status && status->isFolder() ? contentOf(place) : std::nullopt;
    if (!content)
        return;
    const QString id = textFromBytes(slot);
    const QString name = textFromBytes(*content);
    const auto before = std::ranges::find_if(
        known, [&](const TrashItem &item) { return item.id == id && item.name == name; });
    if (before != known.end())
        m_items.push_back(*before);
    else
        m_items.push_back({id, name, defaultHome(m_root, name).text(), referenceSeconds(status->changed),
                           disk::isFolder(place.child(*content)), disk::sizeOf(place.child(*content))});
    m_unsaved = true;
}

Result<void> TrashStore::repair()
{
    const Result<FileDescriptor> folder = openVaultFolder(m_root, trashFolder(m_root));
    if (!folder)
        return folder.error().is(ENOENT) ? Result<void>() : tl::unexpected(folder.error());
    lockIndex(folder->number());
    if (Result<void> loaded = load(folder->number()); !loaded)
        return loaded;
    removeAbandonedTemporaries(trashIndexFile(m_root));
    const size_t dropped = std::erase_if(m_items, [&](const TrashItem &item) {
        const bool drop = isAtHome(item, folder->number());
        if (drop)
            removeEmptySlot(item);
        return drop;
    });
    return dropped > 0 || m_unsaved || m_damaged ? save(folder->number()) : Result<void>();
}

Result<void> TrashStore::add(const std::vector<TrashItem> &records)
{
    if (Result<void> made = disk::makeFolder(trashFolder(m_root)); !made && !made.error().is(EEXIST))
        return made;
    return change(records, {});
}

Result<void> TrashStore::remove(const QSet<QString> &ids)
{
    const Result<void> changed = change({}, ids);
    if (!changed) {
        std::erase_if(m_items, [&](const TrashItem &item) { return ids.contains(item.id); });
        m_unsaved = true;
    }
    return changed;
}

Result<void> TrashStore::change(const std::vector<TrashItem> &added, const QSet<QString> &removed)
{
    const Result<FileDescriptor> folder = openVaultFolder(m_root, trashFolder(m_root));
    if (!folder)
        return tl::unexpected(folder.error());
    lockIndex(folder->number());
    if (Result<void> loaded = load(folder->number()); !loaded)
        return loaded;
    std::vector<TrashItem> before = m_items;
    m_items.insert(m_items.begin(), added.rbegin(), added.rend());
    std::erase_if(m_items, [&](const TrashItem &item) { return removed.contains(item.id); });
    m_unsaved = true;
    Result<void> saved = save(folder->number());
    if (!saved && !added.empty())
        m_items = std::move(before);
    return saved;
}

Result<void> TrashStore::save(int folder)
{
    const Location index = trashIndexFile(m_root);
    const QByteArray name = index.nameBytes().toByteArray();
    if (m_damaged) {
        if (Result<void> kept = keepAside(index); !kept)
            return kept;
        m_damaged = false;
    }
    if (Result<void> replaced = replaceAtomically(folder, name, encodeTrash(m_items), {}); !replaced)
        return replaced;
    m_unsaved = false;
    const Result<FileStatus> status = statusAt(folder, name.constData(), Links::NoFollow);
    m_index = status ? std::optional(*status) : std::nullopt;
    return {};
}

Result<void> TrashStore::makeSlot(const TrashItem &item) const
{
    const Result<FileDescriptor> folder = openVaultFolder(m_root, trashFolder(m_root));
    if (!folder)
        return tl::unexpected(folder.error());
    const bool made = ::mkdirat(folder->number(), bytesFromText(item.id).constData(), 0777) == 0;
    return made ? Result<void>() : systemFailure(errno, item.name);
}

Result<void> TrashStore::checkSlot(const TrashItem &item) const
{
    return checkVaultFolder(m_root, trashSlot(m_root, item));
}

void TrashStore::removeEmptySlot(const TrashItem &item) const
{
    if (const Result<FileDescriptor> folder = openVaultFolder(m_root, trashFolder(m_root)))
        ::unlinkat(folder->number(), bytesFromText(item.id).constData(), AT_REMOVEDIR);
}

Result<void> TrashStore::deleteSlot(const TrashItem &item) const
{
    return checkVaultFolder(m_root, trashFolder(m_root)).and_then([&] {
        return disk::remove(trashSlot(m_root, item));
    });
}

bool TrashStore::hasExpired(const TrashItem &item, double now) const
{
    if (!trashRetentionIsOver(item.deletedAt, now))
        return false;
    const Result<FileDescriptor> folder = openVaultFolder(m_root, trashFolder(m_root));
    if (!folder)
        return false;
    const Result<FileStatus> slot =
        statusAt(folder->number(), bytesFromText(item.id).constData(), Links::NoFollow);
    return slot ? trashRetentionIsOver(referenceSeconds(slot->changed), now) : slot.error().is(ENOENT);
}

} // namespace cratewell
