#include "ui/grid/row_changes.h"

#include <gtest/gtest.h>
#include <numeric>
#include <random>

namespace cratewell {

namespace {

// What leads from a list of `oldCount` rows to one with these former rows.
FormerRows leadingTo(int oldCount, const std::vector<int> &former)
{
    VisibleAssets before;
    before.indices.resize(size_t(oldCount));
    std::iota(before.indices.begin(), before.indices.end(), AssetIndex(0));
    before.rows.assign(before.indices.begin(), before.indices.end());
    std::vector<AssetIndex> after(former.size());
    std::iota(after.begin(), after.end(), AssetIndex(0));
    std::vector<AssetIndex> previous;
    previous.reserve(former.size());
    for (const int row : former)
        previous.push_back(row < 0 ? noAsset : AssetIndex(row));
    return formerRows(before, after, previous);
}

// Takes the changes as a view does: what the rows of the new list must then be.
std::vector<int> applied(int oldCount, const std::vector<int> &former, const RowChanges &changes)
{
    std::vector<int> rows(size_t(oldCount), 0);
    std::iota(rows.begin(), rows.end(), 0);
    for (auto run = changes.removes.rbegin(); run != changes.removes.rend(); ++run)
        rows.erase(rows.begin() + run->first, rows.begin() + run->first + run->count);
    for (const RowRun &run : changes.inserts)
        rows.insert(rows.begin() + run.first, former.begin() + run.first,
                    former.begin() + run.first + run.count);
    return rows;
}

} // namespace

TEST(RowChanges, AreTheFewestForSimpleChanges)
{
    struct Case
    {
        const char *what;
        int oldCount;
        std::vector<int> former;
        std::vector<RowRun> removes;
        std::vector<RowRun> inserts;
    };
    const Case cases[] = {
        {"replaced", 2, {-1, -1}, {{0, 2}}, {{0, 2}}},
        {"narrowed", 6, {1, 4}, {{0, 1}, {2, 2}, {5, 1}}, {}},
        {"widened", 2, {-1, 0, -1, -1, 1, -1}, {}, {{0, 1}, {2, 2}, {5, 1}}},
        {"one moved far down", 5, {1, 2, 3, 4, 0}, {{0, 1}}, {{4, 1}}},
        {"one moved far up", 5, {4, 0, 1, 2, 3}, {{4, 1}}, {{0, 1}}},
        {"moved past a new one", 4, {1, 2, -1, 0, 3}, {{0, 1}}, {{2, 2}}},
    };
    for (const Case &each : cases) {
        const RowChanges changes = rowChanges(leadingTo(each.oldCount, each.former));
        EXPECT_EQ(changes.removes, each.removes) << each.what;
        EXPECT_EQ(changes.inserts, each.inserts) << each.what;
    }
}

TEST(RowChanges, LeadFromAnyListToAnyOther)
{
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        const int oldCount = int(random() % 12);
        std::vector<int> former(static_cast<size_t>(oldCount));
        std::iota(former.begin(), former.end(), 0);
        std::shuffle(former.begin(), former.end(), random);
        former.resize(random() % (former.size() + 1));
        for (unsigned added = random() % 5; added > 0; --added)
            former.insert(former.begin() + long(random() % (former.size() + 1)), -1);

        const FormerRows leading = leadingTo(oldCount, former);
        for (int row = 0; row < int(former.size()); ++row)
            ASSERT_EQ(leading.at(row), former[size_t(row)]) << testing::PrintToString(former);
        ASSERT_EQ(applied(oldCount, former, rowChanges(leading)), former) << testing::PrintToString(former);
    }
}

} // namespace cratewell
