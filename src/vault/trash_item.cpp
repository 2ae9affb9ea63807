#include "vault/trash_item.h"

#include <QHashFunctions>

#include <algorithm>
#include <cmath>

namespace cratewell {

namespace {

constexpr double secondsPerDay = 86400;
constexpr std::chrono::seconds referenceDate(978307200); // 2001-01-01 UTC since 1970

} // namespace

int TrashItem::daysLeft(double now) const
{
    // An index from elsewhere may claim any date.
    const double days = std::trunc((now - deletedAt) / secondsPerDay);
    return trashRetentionDays - int(std::clamp<double>(days, 0, trashRetentionDays));
}

bool trashRetentionIsOver(double since, double now)
{
    return now - since > trashRetentionDays * secondsPerDay;
}

size_t qHash(const TrashItem &item, size_t seed)
{
    return qHashMulti(seed, item.id, item.name, item.original, item.deletedAt, item.isFolder, item.size);
}

double secondsNow()
{
    return referenceSeconds(std::chrono::system_clock::now().time_since_epoch());
}

double referenceSeconds(std::chrono::nanoseconds since1970)
{
    return std::chrono::duration<double>(since1970 - referenceDate).count();
}

} // namespace cratewell
