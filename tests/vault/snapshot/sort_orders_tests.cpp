#include "vault/snapshot/sort_orders.h"

#include <gtest/gtest.h>

namespace cratewell {
namespace {

// A snapshot of one folder that lists these names in this order, all of one size and age.
SnapshotData snapshotListing(const std::vector<const char *> &names)
{
    const Location folder = Location::fromBytes("/vault/SFX");
    std::vector<Asset> assets;
    assets.reserve(names.size());
    for (const char *name : names)
        assets.push_back({folder.child(QByteArrayView(name)), AssetKind::Audio, 1, 2.0, {3, 1, 4}});
    SnapshotData data;
    data.scanned = true;
    const quint32 count = quint32(assets.size());
    const auto contents =
        std::make_shared<const FolderContents>(folder, std::move(assets), std::vector<ChildFolder>());
    data.folders.push_back({contents, {{0, 0, count}}, nullptr});
    data.folderIndex.insert(folder, 0);
    data.runs.push_back({contents.get(), 0, 0, count});
    data.nameBytes = contents->nameBytes;
    for (const Asset &asset : contents->assets)
        data.assets.push_back(&asset);
    return data;
}

// Many file systems list a folder in another order after a while.
TEST(SortOrders, EqualAssetsFollowTheListingAlsoWhenItWasShuffled)
{
    const std::vector<std::vector<const char *>> listings{
        {"hit.wav", "HIT.wav", "b.wav", "Hit.wav", "hit 1.wav", "hit 01.wav", "a.wav", "c.wav", "d.wav"},
        {"Hit.wav", "a.wav", "hit 01.wav", "hit.wav", "b.wav", "HIT.wav", "hit 1.wav", "c.wav", "d.wav"},
        {"b.wav", "hit 01.wav", "a.wav", "HIT.wav", "Hit.wav", "hit 1.wav", "hit.wav", "c.wav", "d.wav"},
        {"b.wav", "hit 01.wav", "a.wav", "HIT.wav", "Hit.wav", "hit 1.wav", "hit.wav", "d.wav", "new.wav"},
    };
    SnapshotData before;
    for (const std::vector<const char *> &names : listings) {
        SnapshotData fresh = snapshotListing(names);
        ASSERT_TRUE(makeOrders(fresh, nullptr, {}));
        SnapshotData carried = snapshotListing(names);
        ASSERT_TRUE(makeOrders(carried, &before, {}));
        EXPECT_EQ(fresh.orders, carried.orders);
        before = std::move(carried);
    }
}

} // namespace
} // namespace cratewell
