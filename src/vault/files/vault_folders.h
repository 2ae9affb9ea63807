#pragma once

#include "platform/posix/file_descriptor.h"

namespace cratewell {

// Folders of a vault, reached without following a link, since a vault from elsewhere may hold links that lead
// out of it. A category's own folder may be a link, and so may what leads to the root. Places outside the
// categories and the trash are the user's choice and reached as the system does. Any thread.

// ELOOP when a link is on the way or in the folder's place.
[[nodiscard]] Result<FileDescriptor> openVaultFolder(const Location &root, const Location &folder);
[[nodiscard]] Result<void> checkVaultFolder(const Location &root, const Location &folder);
// With what leads to it. A root that is not there is not made: ENOENT.
[[nodiscard]] Result<void> makeVaultFolders(const Location &root, const Location &folder);

} // namespace cratewell
