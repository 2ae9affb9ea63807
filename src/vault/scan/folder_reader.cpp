#include "vault/scan/folder_reader.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include <fcntl.h>

namespace cratewell {

namespace {

constexpr std::chrono::seconds referenceDate{978307200}; // 2001-01-01 UTC since 1970

double addedFrom(const FileStatus &status)
{
    if (!status.created)
        return distantPast;
    const auto seconds = std::chrono::floor<std::chrono::seconds>(*status.created);
    return double((seconds - referenceDate).count()) + double((*status.created - seconds).count()) * 1e-9;
}

// Whether the error says what is at the place, rather than that the system could not look.
bool isAnswer(const Error &error)
{
    constexpr std::array answers{ENOENT, ENOTDIR, EACCES, EPERM, ELOOP, ENAMETOOLONG};
    return std::ranges::find(answers, error.code) != answers.end();
}

} // namespace

Result<std::unique_ptr<FolderReader>> FolderReader::open(const Location &folder, VaultCategory category,
                                                         Links links)
{
    std::unique_ptr<FolderReader> reader(new FolderReader(category));
    const int linkFlag = links == Links::NoFollow ? O_NOFOLLOW : 0;
    Result<FileDescriptor> descriptor = openFile(folder, O_RDONLY | O_DIRECTORY | linkFlag);
    const Result<void> read = descriptor ? reader->readNames(std::move(*descriptor))
                                         : tl::make_unexpected(std::move(descriptor).error());
    if (!read && !isAnswer(read.error()))
        return tl::unexpected(read.error());
    return reader;
}

QByteArrayView FolderReader::name(const ListedEntry &entry) const
{
    return {m_names.data() + entry.nameStart, qsizetype(entry.nameSize)};
}

Result<void> FolderReader::readNames(FileDescriptor descriptor)
{
    const Result<FileStatus> status = statusOf(descriptor.number());
    if (!status)
        return tl::unexpected(status.error());
    m_identity = {status->device, status->inode};
    // On most file systems a folder's size grows with its names; a wrong guess costs nothing.
    const size_t names = std::clamp<size_t>(size_t(status->size) / 32, 16, 4096);
    m_entries.reserve(names);
    m_names.reserve(names * 32);

    m_folder.reset(::fdopendir(descriptor.number()));
    if (!m_folder)
        return systemFailure(errno);
    descriptor.release();
    errno = 0;
    while (const dirent *entry = ::readdir(m_folder.get())) {
        const QByteArrayView name(entry->d_name, qsizetype(strlen(entry->d_name)));
        if (Result<void> added = addEntry(name, entry->d_type); !added)
            return added;
        errno = 0;
    }
    return errno == 0 ? Result<void>() : systemFailure(errno);
}

Result<void> FolderReader::addEntry(QByteArrayView name, uchar directoryType)
{
    if (isHiddenName(name))
        return {};
    if (directoryType == DT_UNKNOWN) {
        const auto status =
            statusAt(::dirfd(m_folder.get()), name.data(), Links::NoFollow, Freshness::Cached);
        if (!status)
            return isAnswer(status.error()) ? Result<void>() : tl::unexpected(status.error());
        directoryType = uchar(IFTODT(status->mode));
    }
    ListedEntry entry;
    if (directoryType == DT_DIR) {
        entry.type = ListedEntry::Type::Folder;
    } else if (directoryType == DT_REG || directoryType == DT_LNK) {
        const std::optional<AssetKind> kind = kindOf(name);
        if (!kind || !accepts(m_category, *kind))
            return {};
        entry.type = ListedEntry::Type::File;
        entry.kind = *kind;
    } else {
        return {};
    }
    entry.nameStart = quint32(m_names.size());
    entry.nameSize = quint16(name.size());
    m_names.insert(m_names.end(), name.data(), name.data() + name.size() + 1);
    m_entries.push_back(entry);
    return {};
}

Result<void> FolderReader::readDetails(size_t first, size_t last, const FolderContents *earlier)
{
    Result<void> result;
    for (size_t i = first; i < last; ++i) {
        ListedEntry &entry = m_entries[i];
        if (entry.type != ListedEntry::Type::File)
            continue;
        Result<void> read = readDetails(entry);
        if (read || isAnswer(read.error()))
            continue;
        result = std::move(read);
        if (const auto known = earlier ? earlier->find(name(entry)) : std::nullopt) {
            entry.added = earlier->assets[*known].added;
            entry.version = earlier->assets[*known].version;
        }
    }
    return result;
}

// A link counts as added when the link was made; its size and version are the target's. A link that leads
// nowhere and a file that may not be looked at are listed without details.
Result<void> FolderReader::readDetails(ListedEntry &entry) const
{
    const int folder = ::dirfd(m_folder.get());
    const char *name = m_names.data() + entry.nameStart;
    Result<FileStatus> status = statusAt(folder, name, Links::NoFollow, Freshness::Cached);
    if (status)
        entry.added = addedFrom(*status);
    else if (status.error().is(ENOENT))
        entry.type = ListedEntry::Type::Unlisted;
    if (status && status->isLink())
        status = statusAt(folder, name, Links::Follow, Freshness::Cached);
    if (!status)
        return tl::unexpected(status.error());
    if (status->isRegularFile())
        entry.version = {status->inode, status->size, status->modified.count(), status->changed.count()};
    else
        entry.type = ListedEntry::Type::Unlisted;
    return {};
}

} // namespace cratewell
