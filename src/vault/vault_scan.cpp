#include "vault/vault_scan.h"

#include "vault/snapshot/picture_builder.h"
#include "vault/snapshot/picture_orders.h"

namespace cratewell {

std::shared_ptr<const VaultPicture> VaultScan::run(const Location &root,
                                                   const std::shared_ptr<const VaultPicture> &before,
                                                   const std::function<bool()> &cancelled)
{
    const PictureData *earlier = before ? before->d.get() : nullptr;
    Crawl crawl(root, earlier, cancelled);
    if (!crawl.run())
        return nullptr;
    if (crawl.changedNothing() && before->root() == root)
        return before;
    auto picture = std::make_shared<VaultPicture>();
    buildPicture(*picture->d, root, crawl);
    if (!makeOrders(*picture->d, earlier, cancelled))
        return nullptr;
    return picture;
}

} // namespace cratewell
