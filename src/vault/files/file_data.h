#pragma once

#include "platform/error.h"

namespace cratewell {

struct OperationProgress;

namespace disk {

// The first `size` bytes of an open regular file into an empty one, holes as holes; less where the file is
// shorter than it says. ECANCELED when the progress says so.
[[nodiscard]] Result<void> copyData(int from, int to, qint64 size, OperationProgress &progress);
// Extended attributes and access lists, where the target's file system has them.
[[nodiscard]] Result<void> copyAttributes(int from, int to);

} // namespace disk

} // namespace cratewell
