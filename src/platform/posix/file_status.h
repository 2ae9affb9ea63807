#pragma once

#include "platform/error.h"

#include <QByteArray>
#include <chrono>
#include <optional>
#include <sys/stat.h>

namespace cratewell {

enum class Links { Follow, NoFollow };

// What the system knows about a file. Times count from 1970 UTC.
struct FileStatus
{
    mode_t mode = 0;
    quint64 device = 0;
    quint64 inode = 0;
    qint64 size = 0;
    std::chrono::nanoseconds modified{0};
    std::chrono::nanoseconds changed{0};
    std::optional<std::chrono::nanoseconds> created; // not every file system knows it

    bool isRegularFile() const { return S_ISREG(mode); }
    bool isFolder() const { return S_ISDIR(mode); }
    bool isLink() const { return S_ISLNK(mode); }
};

// Cached: a network disk is not asked again for what is known of it already.
enum class Freshness { Cached, Current };

// Of a name in an open folder (or AT_FDCWD); with Links::NoFollow of a link itself. Never mounts anything.
[[nodiscard]] Result<FileStatus> statusAt(int folder, const char *name, Links links,
                                          Freshness freshness = Freshness::Current);
[[nodiscard]] Result<FileStatus> statusOf(int descriptor);

} // namespace cratewell
