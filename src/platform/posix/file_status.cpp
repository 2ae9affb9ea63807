#include "platform/posix/file_status.h"

#include "platform/internal/system_calls.h"

namespace cratewell {

Result<FileStatus> statusAt(int folder, const char *name, Links links, Freshness freshness)
{
    return chosen::statusAt(folder, name, links, freshness);
}

Result<FileStatus> statusOf(int descriptor)
{
    return chosen::statusOf(descriptor);
}

} // namespace cratewell
