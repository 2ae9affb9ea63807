#pragma once

#include "platform/location.h"

#include <QMetaType>

#include <chrono>

namespace cratewell {

inline constexpr int trashRetentionDays = 30;

// One deleted item that can still be brought back: what the trash page shows and the trash index stores.
struct TrashItem
{
    QString id;           // the name of its slot folder: a UUID in upper case
    QString name;         // its name when it was deleted, one plain path component
    QString original;     // where it was: an absolute path as text
    double deletedAt = 0; // seconds since 2001-01-01 UTC
    bool isFolder = false;
    qint64 size = 0; // bytes when it was deleted; a folder's files together

    // Whole days until it is removed for good, 0 to 30; `now` in seconds since 2001-01-01 UTC.
    int daysLeft(double now) const;

    friend bool operator==(const TrashItem &, const TrashItem &) = default;
};

// Whether an item deleted at `since` has been kept long enough at `now`; both in seconds since 2001-01-01
// UTC.
bool trashRetentionIsOver(double since, double now);

size_t qHash(const TrashItem &item, size_t seed = 0);

// Seconds since 2001-01-01 UTC.
double secondsNow();
double referenceSeconds(std::chrono::nanoseconds since1970);

} // namespace cratewell

Q_DECLARE_METATYPE(cratewell::TrashItem)
