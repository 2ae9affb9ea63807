#pragma once

#include "vault/vault_snapshot.h"

#include <functional>

namespace cratewell {

// Lists a vault: pure work on any thread, values in, values out. Unreadable folders are empty ones.
class VaultScan
{
public:
    // `before` may be null or of another root; what did not change is shared with it. Links to folders are
    // not descended; a link to a file takes its kind from its own name and its size from the target. Names
    // beginning with a dot are skipped. When nothing at all changed the result is `before` itself.
    // `canceled` is polled now and then, on the calling thread; a canceled scan gives null.
    static std::shared_ptr<const VaultSnapshot> run(const Location &root,
                                                    const std::shared_ptr<const VaultSnapshot> &before,
                                                    const std::function<bool()> &canceled = {});
    static SnapshotDiff compare(std::shared_ptr<const VaultSnapshot> before,
                                std::shared_ptr<const VaultSnapshot> after);
};

} // namespace cratewell
