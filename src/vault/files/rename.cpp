#include "vault/files/rename.h"

#include "platform/posix/file_descriptor.h"
#include "vault/files/disk.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cratewell::disk {

namespace {

#ifdef __linux__

int renameExclusively(const char *from, const char *to)
{
    return ::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0 ? 0 : errno;
}

#else

int renameExclusively(const char *from, const char *to)
{
    return ::renamex_np(from, to, RENAME_EXCL) == 0 ? 0 : errno;
}

#endif

int renamePlainly(const Location &from, const Location &to)
{
    return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

// One entry of one folder under two spellings. A file with several names might be there under two of them.
bool isSameEntry(const Location &a, const Location &b)
{
    struct stat first;
    struct stat second;
    return ::lstat(a.c_str(), &first) == 0 && ::lstat(b.c_str(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino &&
           (S_ISDIR(first.st_mode) || first.st_nlink == 1);
}

// An empty folder claims the name; what another program puts into it meanwhile makes the renaming fail.
int renameFolderByClaim(const Location &from, const Location &to)
{
    if (::mkdir(to.c_str(), 0700) != 0)
        return errno;
    const int error = renamePlainly(from, to);
    if (error)
        ::rmdir(to.c_str());
    return error == ENOTEMPTY ? EEXIST : error;
}

// A second name for the file claims it; the first goes, or the second when the first cannot.
int renameFileByLink(const Location &from, const Location &to)
{
    if (::link(from.c_str(), to.c_str()) != 0)
        return errno;
    if (::unlink(from.c_str()) == 0)
        return 0;
    const int error = errno;
    ::unlink(to.c_str());
    return error;
}

int renameFileByClaim(const Location &from, const Location &to)
{
    const Result<FileDescriptor> claim = openFile(to, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW);
    if (!claim)
        return claim.error().code;
    const int error = renamePlainly(from, to);
    if (error)
        ::unlink(to.c_str());
    return error;
}

// For file systems that know no renaming without replacing.
int renameByClaim(const Location &from, const Location &to)
{
    if (isFolder(from))
        return to.isInside(from) ? EINVAL : renameFolderByClaim(from, to);
    const int error = renameFileByLink(from, to);
    const bool noLinks = error == EPERM || error == EOPNOTSUPP || error == ENOSYS || error == EMLINK;
    return noLinks && !exists(to) ? renameFileByClaim(from, to) : error;
}

} // namespace

Result<void> renameWithoutReplacing(const Location &from, const Location &to)
{
    int error = renameExclusively(from.c_str(), to.c_str());
    // EINVAL also says that a folder would go into itself; then the other way says so again.
    if (error == EINVAL || error == ENOSYS || error == EOPNOTSUPP)
        error = isSameEntry(from, to) ? EEXIST : renameByClaim(from, to);
    if (error == EEXIST && isSameEntry(from, to))
        error = renamePlainly(from, to);
    if (error)
        return systemFailure(error);
    return {};
}

} // namespace cratewell::disk
