#include "vault/vault_scan.h"

#include "vault/snapshot/snapshot_builder.h"
#include "vault/snapshot/sort_orders.h"

namespace cratewell {

ScanResult VaultScan::run(const Location &root, const std::shared_ptr<const VaultSnapshot> &before,
                          const std::function<bool()> &canceled)
{
    const SnapshotData *earlier = before ? before->d.get() : nullptr;
    DirectoryScanner scanner(root, earlier, canceled);
    if (!scanner.run())
        return {};
    if (scanner.changedNothing() && before->root() == root)
        return {before, scanner.isComplete()};
    auto snapshot = std::make_shared<VaultSnapshot>();
    buildSnapshot(*snapshot->d, root, scanner);
    if (!makeOrders(*snapshot->d, earlier, canceled))
        return {};
    return {std::move(snapshot), scanner.isComplete()};
}

} // namespace cratewell
