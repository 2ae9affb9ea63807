#pragma once

#include "platform/location.h"
#include "platform/posix/file_descriptor.h"

#include <vector>

namespace cratewell {

// Makes what is written to folders outlive a power cut, once for each file system that they lie on. A folder
// is included before something is written to it: a write that fails later is reported only to descriptors
// that were open by then. File thread.
class WriteBarrier
{
public:
    [[nodiscard]] Result<void> include(const Location &folder);
    // Returns when everything written to the included file systems has reached the disks.
    [[nodiscard]] Result<void> flush();

private:
    struct FileSystem
    {
        quint64 device;
        FileDescriptor folder;
    };
    std::vector<FileSystem> m_fileSystems;
};

} // namespace cratewell
