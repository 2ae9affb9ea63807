#include "platform/posix/file_status.h"

#include "platform/internal/system_calls.h"

#include <QString>

namespace cratewell {

Result<FileStatus> statusAt(int folder, const char *name, Links links, Freshness freshness)
{
    FileStatus status;
    if (const int code = chosen::statusAt(folder, name, links, freshness, status))
        return systemFailure(code);
    return status;
}

Result<FileStatus> statusOf(int descriptor)
{
    FileStatus status;
    if (const int code = chosen::statusOf(descriptor, status))
        return systemFailure(code);
    return status;
}

} // namespace cratewell
