#pragma once

#include "platform/posix/file_descriptor.h"

namespace cratewell {

// Memory without a name that another process can be handed: zeroed, closed on exec, pages come with the first
// write. Where the system can, its size is fixed for good (sealed); elsewhere only shrinking by this user's
// own processes would change it.
[[nodiscard]] Result<FileDescriptor> createSharedMemory(qint64 bytes);

// Gives the pages back to the system where it can; they read as zero then.
void discardPages(int sharedMemory, qint64 bytes);

} // namespace cratewell
