#include "vault/files/temporaries.h"

#include "platform/posix/file_content.h"
#include "platform/posix/file_status.h"
#include "vault/files/disk.h"
#include "vault/files/rename.h"
#include "vault/files/trash_index.h"
#include "vault/files/unique_names.h"
#include "vault/item_name.h"

#include <QSet>
#include <QUuid>

#include <algorithm>
#include <cerrno>
#include <tuple>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace cratewell {

namespace {

// A journal is a list of entries that each end with a 0: the path of a copy, from the root when it lies in
// the vault; once that is complete, its path again and "=" with the name it is to get; before a complete copy
// is removed, its path once more.
constexpr char completeMark = '=';
constexpr QByteArrayView journalPrefix = "journal";
constexpr qint64 longestJournal = qint64{256} << 20; // bytes; more is no journal of ours

constexpr QByteArrayView prefix = ".cratewell-";
constexpr QByteArrayView suffix = ".part";
constexpr qsizetype idSize = 32;

QByteArray freshId()
{
    return QUuid::createUuid().toByteArray(QUuid::Id128);
}

// A journal may come from anywhere, but nobody can guess such a name of another vault's copy.
bool isTemporaryName(QByteArrayView name)
{
    if (name.size() != prefix.size() + idSize + suffix.size() || !name.startsWith(prefix) ||
        !name.endsWith(suffix))
        return false;
    const QByteArrayView id = name.sliced(prefix.size(), idSize);
    return std::all_of(id.begin(), id.end(), [](char letter) {
        return (letter >= '0' && letter <= '9') || (letter >= 'a' && letter <= 'f');
    });
}

QByteArray entryOf(const Location &root, const Location &copy)
{
    const QByteArray path = copy.isInside(root) ? copy.bytes().sliced(root.bytes().size() + 1) : copy.bytes();
    return path + '\0';
}

Location copyOf(const Location &root, const QByteArray &entry)
{
    return Location::fromBytes(entry.startsWith('/') ? entry : root.bytes() + '/' + entry);
}

std::vector<Temporaries::Completed> readJournal(const Location &root, const QByteArray &bytes)
{
    std::vector<Temporaries::Completed> copies;
    const QList<QByteArray> entries = bytes.split('\0');
    // What stands behind the last 0 was never handed out.
    for (qsizetype i = 0; i + 1 < entries.size(); ++i) {
        if (!entries[i].startsWith(completeMark))
            copies.push_back({copyOf(root, entries[i]), {}});
        else if (!copies.empty() && isPlainName(QByteArrayView(entries[i]).sliced(1)))
            copies.back().name = entries[i].sliced(1);
    }
    // Of a copy the last entry holds.
    std::ranges::reverse(copies);
    QSet<Location> seen;
    std::erase_if(copies, [&](const auto &one) {
        const qsizetype before = seen.size();
        seen.insert(one.copy);
        return seen.size() == before || !isTemporaryName(one.copy.nameBytes());
    });
    return copies;
}

bool isSameFile(const Location &a, const Location &b)
{
    const Result<FileStatus> first = statusAt(AT_FDCWD, a.c_str(), Links::NoFollow);
    const Result<FileStatus> second = statusAt(AT_FDCWD, b.c_str(), Links::NoFollow);
    return first && second && first->device == second->device && first->inode == second->inode;
}

// True when nothing is left to be done.
bool settle(const Temporaries::Completed &one, UniqueNames &names)
{
    const Location folder = one.copy.parent();
    if (const Result<FileStatus> status = statusAt(AT_FDCWD, one.copy.c_str(), Links::NoFollow); !status) {
        const Result<FileStatus> reached = statusAt(AT_FDCWD, folder.c_str(), Links::Follow);
        return status.error().is(ENOENT) && reached && reached->isFolder();
    }
    // Killed between giving the name and taking the hidden one away, it has both.
    if (one.name.isEmpty() || isSameFile(one.copy, folder.child(one.name)))
        return disk::remove(one.copy).has_value();
    return names
        .claim(folder, one.name, UniqueNames::Naming::File,
               [&](const Location &to) { return disk::renameWithoutReplacing(one.copy, to); })
        .has_value();
}

Result<FileDescriptor> openTrashFolder(const Location &root)
{
    return openFile(trashFolder(root), O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
}

} // namespace

Temporaries::~Temporaries()
{
    const auto isGone = [](const Location &copy) {
        const Result<FileStatus> status = statusAt(AT_FDCWD, copy.c_str(), Links::NoFollow);
        return !status && status.error().is(ENOENT);
    };
    if (m_journal.isOpen() && std::ranges::all_of(m_copies, isGone))
        ::unlinkat(m_folder.number(), m_journalName.constData(), 0);
}

Result<void> Temporaries::open()
{
    if (const Result<void> made = disk::makeFolder(trashFolder(m_root)); !made && !made.error().is(EEXIST))
        return made;
    Result<FileDescriptor> folder = openTrashFolder(m_root);
    if (!folder)
        return tl::unexpected(folder.error());
    const QByteArray name = journalPrefix.toByteArray() + '-' + freshId();
    Result<FileDescriptor> journal =
        openAt(folder->number(), name, O_WRONLY | O_CREAT | O_EXCL | O_APPEND | O_NOFOLLOW);
    if (!journal)
        return tl::unexpected(journal.error());
    // Where there are no locks, no clean-up takes a journal either.
    struct stat facts = {};
    if ((::flock(journal->number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) ||
        ::fstat(journal->number(), &facts) != 0 || facts.st_nlink == 0)
        return open(); // a clean-up was quicker
    m_folder = std::move(*folder);
    m_journal = std::move(*journal);
    m_journalName = name;
    return {};
}

// Without a part of an entry at its end, which would swallow the next one.
Result<void> Temporaries::append(const QByteArray &entries)
{
    const off_t end = ::lseek(m_journal.number(), 0, SEEK_END);
    Result<void> written = writeAll(m_journal.number(), entries);
    if (!written && end >= 0)
        std::ignore = ::ftruncate(m_journal.number(), end);
    return written;
}

Result<Location> Temporaries::name(const Location &folder)
{
    if (!m_journal.isOpen()) {
        if (const Result<void> opened = open(); !opened)
            return tl::unexpected(opened.error());
    }
    const Location copy = folder.child(QByteArray(prefix.toByteArray() + freshId() + suffix.toByteArray()));
    if (const Result<void> written = append(entryOf(m_root, copy)); !written)
        return tl::unexpected(written.error());
    m_copies.push_back(copy);
    return copy;
}

Result<void> Temporaries::markComplete(const std::vector<Completed> &copies)
{
    QByteArray entries;
    for (const Completed &one : copies)
        entries += entryOf(m_root, one.copy) + completeMark + one.name + '\0';
    return append(entries).and_then([this] { return flush(m_journal.number()); }).and_then([this] {
        return flush(m_folder.number());
    });
}

void Temporaries::discard(const Location &copy)
{
    // Killed while it removes a folder, it must not leave the rest of it to be taken for complete.
    std::ignore = append(entryOf(m_root, copy));
    disk::remove(copy);
}

bool Temporaries::cleanUp(const Location &root)
{
    const Result<FileDescriptor> folder = openTrashFolder(root);
    const Result<std::vector<QByteArray>> names = disk::names(trashFolder(root));
    if (!folder || !names)
        return false;
    bool othersAtWork = false;
    UniqueNames unique;
    for (const QByteArray &name : *names) {
        if (!name.startsWith(journalPrefix))
            continue;
        const Result<FileDescriptor> journal =
            openAt(folder->number(), name, O_RDWR | O_NOFOLLOW | O_NONBLOCK);
        if (!journal || !statusOf(journal->number()).map(&FileStatus::isRegularFile).value_or(false))
            continue;
        if (::flock(journal->number(), LOCK_EX | LOCK_NB) != 0) {
            othersAtWork = othersAtWork || errno == EWOULDBLOCK;
            continue;
        }
        const Result<QByteArray> bytes = readBounded(journal->number(), longestJournal);
        if (!bytes)
            continue;
        bool settled = true;
        for (const Completed &one : readJournal(root, *bytes))
            settled = settle(one, unique) && settled;
        if (settled)
            ::unlinkat(folder->number(), name.constData(), 0);
    }
    return othersAtWork;
}

} // namespace cratewell
