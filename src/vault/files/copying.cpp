#include "vault/files/copying.h"

#include "platform/posix/file_content.h"
#include "vault/files/disk.h"
#include "vault/files/file_data.h"
#include "vault/files/operation_progress.h"

#include <QSet>

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cratewell::disk {

using namespace Qt::StringLiterals;

namespace {

using Entries = std::vector<CopiedEntry>;

timespec systemTime(std::chrono::nanoseconds time)
{
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time);
    return {time_t(seconds.count()), long((time - seconds).count())};
}

Result<void> takeOverFacts(int from, int to, const FileStatus &status)
{
    if (const Result<void> kept = copyAttributes(from, to); !kept)
        return kept;
    // Some file systems have no permissions or times of their own to set.
    ::fchmod(to, status.mode & 0777);
    const timespec times[] = {{0, UTIME_OMIT}, systemTime(status.modified)};
    ::futimens(to, times);
    return {};
}

bool isSameContent(const FileStatus &a, const FileStatus &b)
{
    return a.size == b.size && a.modified == b.modified;
}

Result<void> copyOpened(int from, const FileStatus &status, int to, OperationProgress &progress)
{
    if (const Result<void> copied = copyData(from, to, status.size, progress); !copied)
        return copied;
    const Result<FileStatus> now = statusOf(from);
    if (!now)
        return tl::unexpected(now.error());
    if (!isSameContent(status, *now))
        return tl::unexpected(Error{u"It was changed while it was being copied"_s});
    return takeOverFacts(from, to, status);
}

// The status of the source before it was read.
Result<FileStatus> copyRegularFile(const Location &from, Links links, const Location &to,
                                   OperationProgress &progress)
{
    const Result<FileDescriptor> source = openRegularFile(from, links);
    if (!source)
        return tl::unexpected(source.error());
    Result<FileStatus> status = statusOf(source->number());
    if (!status)
        return status;
    Result<FileDescriptor> target = openFile(to, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW);
    if (!target)
        return tl::unexpected(target.error());
    Result<void> done = copyOpened(source->number(), *status, target->number(), progress);
    if (done)
        done = target->close();
    if (done)
        return status;
    ::unlink(to.c_str());
    return tl::unexpected(done.error());
}

Result<void> copyLink(const Location &from, const Location &to, qint64 size)
{
    QByteArray target(std::max<qint64>(size, 255) + 1, Qt::Uninitialized);
    const ssize_t length = ::readlink(from.c_str(), target.data(), size_t(target.size()));
    if (length < 0 || length == target.size())
        return systemFailure(length < 0 ? errno : ENAMETOOLONG);
    target.truncate(length);
    if (::symlink(target.constData(), to.c_str()) != 0)
        return systemFailure(errno);
    return {};
}

Result<void> copyEntry(const Location &from, const Location &to, OperationProgress &progress,
                       Entries &entries);

Result<void> copyFolder(const Location &from, const Location &to, const FileStatus &status,
                        OperationProgress &progress, Entries &entries)
{
    const Result<std::vector<QByteArray>> listed = names(from);
    if (!listed)
        return tl::unexpected(listed.error());
    if (const Result<void> made = makeFolder(to); !made)
        return made;
    for (const QByteArray &name : *listed) {
        if (const Result<void> copied = copyEntry(from.child(name), to.child(name), progress, entries);
            !copied)
            return copied;
    }
    const Result<FileDescriptor> source = openFile(from, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
    if (!source)
        return tl::unexpected(source.error());
    const Result<FileDescriptor> target = openFile(to, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
    if (!target)
        return tl::unexpected(target.error());
    return takeOverFacts(source->number(), target->number(), status);
}

Result<void> copyEntry(const Location &from, const Location &to, OperationProgress &progress,
                       Entries &entries)
{
    if (progress.canceled)
        return systemFailure(ECANCELED);
    Result<FileStatus> status = statusAt(AT_FDCWD, from.c_str(), Links::NoFollow);
    if (!status)
        return tl::unexpected(status.error());
    Result<void> copied;
    if (status->isFolder()) {
        copied = copyFolder(from, to, *status, progress, entries);
    } else if (status->isLink()) {
        copied = copyLink(from, to, status->size);
    } else {
        status = copyRegularFile(from, Links::NoFollow, to, progress);
        if (!status)
            return tl::unexpected(status.error());
    }
    if (copied)
        entries.push_back({from, *status});
    return copied;
}

// What stayed of a copied tree, with the reason for the first of it.
class Leftovers
{
public:
    void add(const Location &place, const QString &reason)
    {
        if (m_count++ == 0)
            m_text = u"%1 stayed in %2: %3"_s.arg(place.name(), place.parent().name(), reason);
        m_places.insert(place);
    }
    bool has(const Location &place) const { return m_places.contains(place); }
    Result<void> result() const
    {
        if (m_count == 0)
            return {};
        const QString more = m_count > 1 ? u" (and %1 more)"_s.arg(m_count - 1) : QString();
        return tl::unexpected(Error{m_text + more});
    }

private:
    QString m_text;
    int m_count = 0;
    QSet<Location> m_places;
};

const QString changedMeanwhile = u"it was added or changed meanwhile"_s;

class Remover
{
public:
    void remove(const CopiedEntry &entry)
    {
        if (entry.status.isFolder())
            removeFolderOf(entry);
        else
            removeFile(entry);
    }
    Result<void> result() const { return m_left.result(); }

private:
    void removeFile(const CopiedEntry &entry)
    {
        const Result<FileStatus> now = statusAt(AT_FDCWD, entry.place.c_str(), Links::NoFollow);
        if (!now) {
            if (!now.error().is(ENOENT))
                m_left.add(entry.place, Error::fromErrno(now.error().code).message);
        } else if (!isAsCopied(*now, entry.status)) {
            m_left.add(entry.place, changedMeanwhile);
        } else if (::unlink(entry.place.c_str()) == 0) {
            m_removed.insert({now->device, now->inode});
        } else {
            m_left.add(entry.place, Error::fromErrno(errno).message);
        }
    }
    // Removing another name of the same file has changed its status.
    bool isAsCopied(const FileStatus &now, const FileStatus &before) const
    {
        return now.device == before.device && now.inode == before.inode && isSameContent(now, before) &&
               (now.changed == before.changed || m_removed.contains({now.device, now.inode}));
    }
    void removeFolderOf(const CopiedEntry &entry)
    {
        const Result<void> removed = disk::removeFolder(entry.place);
        if (removed || removed.error().is(ENOENT))
            return;
        const std::vector<QByteArray> rest = names(entry.place).value_or(std::vector<QByteArray>());
        if (rest.empty())
            m_left.add(entry.place, removed.error().message);
        for (const QByteArray &name : rest) {
            const Location place = entry.place.child(name);
            // A folder stays for what is in it, which is named already.
            if (!m_left.has(place) && !m_heldFolders.contains(place))
                m_left.add(place, changedMeanwhile);
        }
        m_heldFolders.insert(entry.place);
    }

    Leftovers m_left;
    QSet<Location> m_heldFolders;
    QSet<std::pair<quint64, quint64>> m_removed; // device and inode
};

} // namespace

Result<void> copyFile(const Location &from, const Location &to, OperationProgress &progress)
{
    return copyRegularFile(from, Links::Follow, to, progress).map([](const FileStatus &) {});
}

Result<std::vector<CopiedEntry>> copyTree(const Location &from, const Location &to,
                                          OperationProgress &progress)
{
    Entries entries;
    const Result<void> copied = copyEntry(from, to, progress, entries);
    if (copied)
        return entries;
    remove(to);
    return tl::unexpected(copied.error());
}

Result<void> removeCopied(const std::vector<CopiedEntry> &entries)
{
    Remover remover;
    for (const CopiedEntry &entry : entries)
        remover.remove(entry);
    return remover.result();
}

} // namespace cratewell::disk
