#pragma once

#include "vault/vault_picture.h"

namespace cratewell {

struct RowRun
{
    int first = 0;
    int count = 0;

    friend bool operator==(const RowRun &, const RowRun &) = default;
};

// Adds a row, which is greater than those before, to ascending runs.
void appendRow(std::vector<RowRun> &runs, int row);

// How one list of rows becomes another: the removes, taken from the back, then the inserts, from the front. A
// row that moves is removed and inserted.
struct RowChanges
{
    std::vector<RowRun> removes; // rows of the old list, ascending
    std::vector<RowRun> inserts; // rows of the new list, ascending
    // More runs than a view should be given one by one: both lists of runs are empty then.
    bool relayout = false;

    bool isEmpty() const { return removes.empty() && inserts.empty() && !relayout; }
};

inline constexpr int rowRunLimit = 400;

// `formerRows` has for each row of the new list its row in the old one, or -1; no old row twice. Takes time
// in proportion to the lists and is minimal when what both hold stands in the same order.
RowChanges rowChanges(int oldCount, std::span<const int> formerRows, int runLimit = rowRunLimit);

// The `formerRows` of a list of assets. `oldRows` has for each asset of the old picture its row or -1,
// `previous` leads from the new picture to the old one and is empty when they are the same.
std::vector<int> formerRows(std::span<const int> oldRows, std::span<const AssetIndex> assets,
                            std::span<const AssetIndex> previous);

} // namespace cratewell
