#include "vault/trash_item.h"

#include <QHashFunctions>

#include <algorithm>
#include <chrono>
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

size_t qHash(const TrashItem &item, size_t seed)
{
    return qHashMulti(seed, item.id, item.name, item.original, item.deletedAt, item.isFolder, item.size);
}

double secondsNow()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch() - referenceDate;
    return std::chrono::duration<double>(now).count();
}

} // namespace cratewell
