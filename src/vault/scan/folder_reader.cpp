#include "vault/scan/folder_reader.h"

#include "platform/posix/file_status.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <optional>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cratewell {

namespace {

constexpr std::chrono::seconds referenceDate(978307200); // 2001-01-01 UTC since 1970

double addedFrom(const FileStatus &status)
{
    if (!status.created)
        return distantPast;
    const auto seconds = std::chrono::floor<std::chrono::seconds>(*status.created);
    return double((seconds - referenceDate).count()) + double((*status.created - seconds).count()) * 1e-9;
}

} // namespace

FolderReader::FolderReader(const Location &folder, VaultCategory category, LinkedFolder linkedFolder)
{
    const int linkFlag = linkedFolder == LinkedFolder::Refuse ? O_NOFOLLOW : 0;
    m_descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOCTTY | linkFlag);
    struct stat facts
    {
    };
    if (m_descriptor < 0 || fstat(m_descriptor, &facts) != 0)
        return;
    m_identity = {quint64(facts.st_dev), quint64(facts.st_ino)};
    // On most file systems a folder's size grows with its names; a wrong guess costs nothing.
    const size_t names = std::clamp<size_t>(size_t(facts.st_size) / 32, 16, 4096);
    m_entries.reserve(names);
    m_names.reserve(names * 32);
    readNames(category);
}

FolderReader::~FolderReader()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
}

QByteArrayView FolderReader::name(const ListedEntry &entry) const
{
    return {m_names.data() + entry.nameStart, qsizetype(entry.nameSize)};
}

void FolderReader::readNames(VaultCategory category)
{
    alignas(dirent64) std::array<char, 32768> buffer;
    for (;;) {
        const ssize_t filled = getdents64(m_descriptor, buffer.data(), buffer.size());
        if (filled <= 0)
            return;
        for (ssize_t at = 0; at < filled;) {
            const auto *entry = reinterpret_cast<const dirent64 *>(buffer.data() + at);
            at += entry->d_reclen;
            addEntry(QByteArrayView(entry->d_name, qsizetype(strlen(entry->d_name))), entry->d_type,
                     category);
        }
    }
}

void FolderReader::addEntry(QByteArrayView name, uchar directoryType, VaultCategory category)
{
    if (isHiddenName(name))
        return;
    if (directoryType == DT_UNKNOWN) {
        const auto status = statusAt(m_descriptor, name.data(), Links::NoFollow, Freshness::Cached);
        if (!status)
            return;
        directoryType = uchar(IFTODT(status->mode));
    }
    ListedEntry entry;
    if (directoryType == DT_DIR) {
        entry.type = ListedEntry::Type::Folder;
    } else if (directoryType == DT_REG || directoryType == DT_LNK) {
        const std::optional<AssetKind> kind = kindOf(name);
        if (!kind || !accepts(category, *kind))
            return;
        entry.type = ListedEntry::Type::File;
        entry.kind = *kind;
    } else {
        return;
    }
    entry.nameStart = quint32(m_names.size());
    entry.nameSize = quint16(name.size());
    m_names.insert(m_names.end(), name.data(), name.data() + name.size() + 1);
    m_entries.push_back(entry);
}

void FolderReader::readDetails(size_t first, size_t last)
{
    for (size_t i = first; i < last; ++i) {
        if (m_entries[i].type == ListedEntry::Type::File)
            readDetails(m_entries[i]);
    }
}

// A link counts as added when the link was made; its size and version are the target's. A link that leads
// nowhere and a file that may not be looked at are listed without facts.
void FolderReader::readDetails(ListedEntry &entry) const
{
    const char *name = m_names.data() + entry.nameStart;
    Result<FileStatus> status = statusAt(m_descriptor, name, Links::NoFollow, Freshness::Cached);
    if (!status && status.error().is(ENOENT)) {
        entry.type = ListedEntry::Type::Unlisted;
        return;
    }
    if (!status)
        return;
    entry.added = addedFrom(*status);
    if (status->isLink())
        status = statusAt(m_descriptor, name, Links::Follow, Freshness::Cached);
    if (!status)
        return;
    if (!status->isRegularFile()) {
        entry.type = ListedEntry::Type::Unlisted;
        return;
    }
    entry.version = {status->inode, status->size, status->modified.count()};
}

} // namespace cratewell
