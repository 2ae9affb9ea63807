#include "ui/row_changes.h"

namespace cratewell {

void appendRow(std::vector<RowRun> &runs, int row)
{
    if (!runs.empty() && runs.back().first + runs.back().count == row)
        ++runs.back().count;
    else
        runs.push_back({row, 1});
}

RowChanges rowChanges(int oldCount, std::span<const int> formerRows, int runLimit)
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

std::vector<int> formerRows(std::span<const int> oldRows, std::span<const AssetIndex> assets,
                            std::span<const AssetIndex> previous)
{
    std::vector<int> former;
    former.reserve(assets.size());
    for (const AssetIndex asset : assets) {
        const AssetIndex old = previous.empty() ? asset : previous[asset];
        former.push_back(old == noAsset ? -1 : oldRows[old]);
    }
    return former;
}

} // namespace cratewell
