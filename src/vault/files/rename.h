#pragma once

#include "platform/error.h"
#include "platform/location.h"

namespace cratewell::disk {

// EEXIST when something is at `to`, EXDEV when it lies on another file system; else all or nothing. A name
// that differs in case only is not in its own way on a disk that ignores case. Any thread.
[[nodiscard]] Result<void> renameWithoutReplacing(const Location &from, const Location &to);

} // namespace cratewell::disk
