#include "platform/posix/shared_memory.h"

#include "platform/internal/system_calls.h"

namespace cratewell {

Result<FileDescriptor> createSharedMemory(qint64 bytes)
{
    const int number = chosen::createSharedMemory(bytes);
    if (number < 0)
        return systemFailure(-number);
    return FileDescriptor(number);
}

void discardPages(int sharedMemory, qint64 bytes)
{
    chosen::discardPages(sharedMemory, bytes);
}

} // namespace cratewell
