#pragma once

#include "platform/error.h"
#include "platform/location.h"

#include <vector>

// Small steps on the disk, each done or failed as a whole. Any thread.
namespace cratewell::disk {

// Something is there, be it a link that leads nowhere.
bool exists(const Location &place);
// Links are not followed.
bool isFolder(const Location &place);
// Names in a folder, hidden ones too, in the order the system lists them; all of them or an error.
[[nodiscard]] Result<std::vector<QByteArray>> names(const Location &folder);
// Bytes of a file or of all files below a folder; what cannot be read counts nothing.
qint64 sizeOf(const Location &place);

// With what leads to it; EEXIST only when something other than a folder is in the way.
[[nodiscard]] Result<void> makeFolders(const Location &folder);
[[nodiscard]] Result<void> makeFolder(const Location &folder);
// With everything in it, as far as that can be removed. What is not there is no error.
Result<void> remove(const Location &place);
// Removes an empty folder.
Result<void> removeFolder(const Location &folder);

} // namespace cratewell::disk
