#pragma once

#include "state/visible_assets.h"

namespace cratewell {

struct RowRun
{
    int first = 0;
    int count = 0;

    friend bool operator==(const RowRun &, const RowRun &) = default;
};

// For each row of a new list its row in the old one. Most changes leave a long beginning and a long end as
// they were; only what lies between is looked up row by row.
struct FormerRows
{
    int oldCount = 0;
    int newCount = 0;
    int sameBegin = 0; // the first rows of both lists
    int sameEnd = 0;   // the last rows of both lists, none of them among the first
    // For each row between them its row between them in the old list, or -1; empty when all are new.
    std::vector<int> between;

    // -1 for a row that is new.
    int at(int row) const;
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

// No old row may stand twice in `former`. Takes time in proportion to what differs and is minimal when what
// both lists hold stands in the same order.
RowChanges rowChanges(const FormerRows &former, int runLimit = rowRunLimit);

// `previous` leads from the new list's snapshot to the old one's and is empty when they are the same.
FormerRows formerRows(const VisibleAssets &before, std::span<const AssetIndex> after,
                      std::span<const AssetIndex> previous);

} // namespace cratewell
