#pragma once

#include "vault/vault_snapshot.h"

#include <functional>

namespace cratewell {

// What a scan found.
struct ScanResult
{
    std::shared_ptr<const VaultSnapshot> snapshot; // null when the scan was canceled
    // False when the disk could not be asked everywhere: too many open files, an I/O error. What could not be
    // read is as in the snapshot before, and a later scan may see more.
    bool complete = true;
};

// Lists a vault: pure work on any thread, values in, values out. Folders that are missing or may not be read
// are empty ones.
class VaultScan
{
public:
    // `before` may be null or of another root; what is unchanged is shared with it. Links to folders are
    // not descended; a link to a file takes its kind from its own name and its size from the target. Names
    // beginning with a dot are skipped. When nothing at all changed the result is `before` itself.
    // `canceled` is polled now and then, on the calling thread.
    static ScanResult run(const Location &root, const std::shared_ptr<const VaultSnapshot> &before,
                          const std::function<bool()> &canceled = {});
    static SnapshotDiff compare(std::shared_ptr<const VaultSnapshot> before,
                                std::shared_ptr<const VaultSnapshot> after);
};

} // namespace cratewell
