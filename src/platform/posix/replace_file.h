#pragma once

#include "platform/posix/file_descriptor.h"

namespace cratewell {

// Yes: what returns without an error outlives a power cut.
enum class Flush { No, Yes };

struct ReplaceOptions
{
    Flush flush = Flush::Yes;
    mode_t mode = 0600; // whatever the umask says
};

// Puts the bytes in the file's place in one step: readers see the old bytes or the new ones. They are written
// to a new file beside it, which is removed on every failure; a link at the file's place is replaced, not
// followed. Makes no folders.
[[nodiscard]] Result<void> replaceAtomically(const Location &file, QByteArrayView bytes,
                                             const ReplaceOptions &options);
// `name` is one component; `folder` is open for reading.
[[nodiscard]] Result<void> replaceAtomically(int folder, const QByteArray &name, QByteArrayView bytes,
                                             const ReplaceOptions &options);

// Removes what killed processes left of their own replaceAtomically of this file.
void removeAbandonedTemporaries(const Location &file);

// Gives the file another, free name beside it ("defaults.json.kept", ".kept-2"...). Under its own it stays,
// so that it can be replaced in one step, except where nothing has two names.
[[nodiscard]] Result<void> keepAside(const Location &file);

} // namespace cratewell
