#pragma once

#include "platform/error.h"
#include "platform/location.h"
#include "platform/posix/file_status.h"

#include <vector>

namespace cratewell {

struct OperationProgress;

// A file, link or folder that has been copied, as it was when its copying began.
struct CopiedEntry
{
    Location place;
    FileStatus status;
};

// Copying keeps bytes, holes, extended attributes, permissions and times; a file is cloned where the file
// system can. `to` must not exist, and does not after a failure. ECANCELED when the progress says so. A file
// that is changed while it is read is not copied. Any thread.
namespace disk {

// A regular file; links to one are followed.
[[nodiscard]] Result<void> copyFile(const Location &from, const Location &to, OperationProgress &progress);
// A file, a link as a link, or a folder with everything in it. What was copied, a folder after what it holds.
[[nodiscard]] Result<std::vector<CopiedEntry>> copyTree(const Location &from, const Location &to,
                                                        OperationProgress &progress);
// Removes what is still as it was copied, and folders with nothing else in them. The error says what stayed
// and why.
[[nodiscard]] Result<void> removeCopied(const std::vector<CopiedEntry> &entries);

} // namespace disk

} // namespace cratewell
