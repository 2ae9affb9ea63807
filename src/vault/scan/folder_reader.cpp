#include "vault/scan/folder_reader.h"

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

constexpr qint64 referenceDate = 978307200; // 2001-01-01 UTC in seconds since 1970

double addedFrom(const struct statx &facts)
{
    if (!(facts.stx_mask & STATX_BTIME))
        return distantPast;
    return double(facts.stx_btime.tv_sec - referenceDate) + double(facts.stx_btime.tv_nsec) * 1e-9;
}

// 0 or the error number.
int readInfo(int folder, const char *name, int linkFlag, struct statx &facts)
{
    constexpr unsigned wanted = STATX_TYPE | STATX_SIZE | STATX_INO | STATX_MTIME | STATX_BTIME;
    const int flags = AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT | linkFlag;
    return statx(folder, name, flags, wanted, &facts) == 0 ? 0 : errno;
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
        struct statx facts;
        if (readInfo(m_descriptor, name.data(), AT_SYMLINK_NOFOLLOW, facts) != 0)
            return;
        directoryType = uchar(IFTODT(facts.stx_mode));
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
    struct statx facts;
    int error = readInfo(m_descriptor, name, AT_SYMLINK_NOFOLLOW, facts);
    if (error == ENOENT) {
        entry.type = ListedEntry::Type::Unlisted;
        return;
    }
    if (error != 0)
        return;
    entry.added = addedFrom(facts);
    if (S_ISLNK(facts.stx_mode)) {
        error = readInfo(m_descriptor, name, 0, facts);
        if (error != 0)
            return;
    }
    if (!S_ISREG(facts.stx_mode)) {
        entry.type = ListedEntry::Type::Unlisted;
        return;
    }
    entry.version = {facts.stx_ino, qint64(facts.stx_size),
                     facts.stx_mtime.tv_sec * 1'000'000'000 + facts.stx_mtime.tv_nsec};
}

} // namespace cratewell
