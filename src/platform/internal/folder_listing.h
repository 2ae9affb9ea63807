#pragma once

#include "platform/posix/file_status.h"

#include <QByteArray>
#include <chrono>
#include <vector>

namespace cratewell {

// What a folder holds, for those who cannot watch it.
struct FolderListing
{
    enum class Detail { Names, Digest };

    // Names of visible folders in it; links are none.
    std::vector<QByteArray> folders;
    // Changes when a visible entry comes, goes or changes its size, time or inode. Only with Detail::Digest.
    quint64 digest = 0;
    // The folder's own last change. File systems date with a coarser clock than ours.
    std::chrono::system_clock::time_point changed;
    static constexpr std::chrono::seconds clockSlack{2};

    [[nodiscard]] static Result<FolderListing> read(const QByteArray &path, Detail detail, Links links);
};

} // namespace cratewell
