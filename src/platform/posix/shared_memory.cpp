#include "platform/posix/shared_memory.h"

#include "platform/internal/system_calls.h"

namespace cratewell {

Result<FileDescriptor> createSharedMemory(qint64 bytes)
{
    return chosen::createSharedMemory(bytes);
}

void discardPages(int sharedMemory, qint64 bytes)
{
    chosen::discardPages(sharedMemory, bytes);
}

} // namespace cratewell
