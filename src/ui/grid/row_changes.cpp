#include "ui/grid/row_changes.h"

#include <algorithm>

namespace cratewell {

void appendRow(std::vector<RowRun> &runs, int row)
{
    if (!runs.empty() && runs.back().first + runs.back().count == row)
        ++runs.back().count;
    else
        runs.push_back({row, 1});
}

int FormerRows::at(int row) const
{
    if (row < sameBegin)
        return row;
    if (row >= newCount - sameEnd)
        return row - newCount + oldCount;
    const int old = between.empty() ? -1 : between[size_t(row - sameBegin)];
    return old < 0 ? -1 : old + sameBegin;
}

namespace {

RowChanges changesBetween(int oldCount, std::span<const int> formerRows, int runLimit)
{
    const int newCount = int(formerRows.size());
    std::vector<int> laterRows(size_t(oldCount), -1);
    for (int row = 0; row < newCount; ++row) {
        if (formerRows[size_t(row)] >= 0)
            laterRows[size_t(formerRows[size_t(row)])] = row;
    }

    // Both lists are walked side by side. Where they disagree about two rows that stay, the one that goes
    // further is taken to have moved: it leaves here and enters there. `moved` marks those that left or
    // entered early.
    RowChanges changes;
    std::vector<bool> moved(size_t(oldCount), false);
    int oldRow = 0;
    int newRow = 0;
    while (oldRow < oldCount || newRow < newCount) {
        if (int(changes.removes.size() + changes.inserts.size()) > runLimit)
            return {{}, {}, true};
        const int later = oldRow < oldCount ? laterRows[size_t(oldRow)] : -1;
        const int former = newRow < newCount ? formerRows[size_t(newRow)] : -1;
        if (oldRow < oldCount && (later < 0 || moved[size_t(oldRow)])) {
            appendRow(changes.removes, oldRow++);
        } else if (newRow < newCount && (former < 0 || moved[size_t(former)])) {
            appendRow(changes.inserts, newRow++);
        } else if (former == oldRow) {
            ++oldRow;
            ++newRow;
        } else if (later - newRow > former - oldRow) {
            moved[size_t(oldRow)] = true;
        } else {
            moved[size_t(former)] = true;
        }
    }
    return changes;
}

} // namespace

RowChanges rowChanges(const FormerRows &former, int runLimit)
{
    const int removed = former.oldCount - former.sameBegin - former.sameEnd;
    const int inserted = former.newCount - former.sameBegin - former.sameEnd;
    RowChanges changes;
    if (former.between.empty()) {
        if (removed > 0)
            changes.removes.push_back({0, removed});
        if (inserted > 0)
            changes.inserts.push_back({0, inserted});
    } else {
        changes = changesBetween(removed, former.between, runLimit);
    }
    for (std::vector<RowRun> *runs : {&changes.removes, &changes.inserts}) {
        for (RowRun &run : *runs)
            run.first += former.sameBegin;
    }
    return changes;
}

FormerRows formerRows(const VisibleAssets &before, std::span<const AssetIndex> after,
                      std::span<const AssetIndex> previous)
{
    const std::span<const AssetIndex> rows = before.indices;
    const auto earlier = [previous](AssetIndex asset) { return previous.empty() ? asset : previous[asset]; };
    const auto same = [&](AssetIndex old, AssetIndex now) { return old == earlier(now); };
    const auto begin =
        std::mismatch(rows.begin(), rows.end(), after.begin(), after.end(), same).first - rows.begin();
    const std::span<const AssetIndex> oldRest = rows.subspan(size_t(begin));
    const std::span<const AssetIndex> newRest = after.subspan(size_t(begin));
    const auto end = std::mismatch(oldRest.rbegin(), oldRest.rend(), newRest.rbegin(), newRest.rend(), same);

    FormerRows former;
    former.oldCount = int(rows.size());
    former.newCount = int(after.size());
    former.sameBegin = int(begin);
    former.sameEnd = int(end.first - oldRest.rbegin());
    if (former.sameBegin + former.sameEnd == former.oldCount)
        return former;
    const auto between = newRest.first(newRest.size() - size_t(former.sameEnd));
    former.between.reserve(between.size());
    for (const AssetIndex asset : between) {
        const AssetIndex old = earlier(asset);
        const int row = old == noAsset ? -1 : before.rows[old];
        former.between.push_back(row < 0 ? -1 : row - former.sameBegin);
    }
    return former;
}

} // namespace cratewell
