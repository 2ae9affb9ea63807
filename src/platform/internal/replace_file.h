#pragma once

#include "platform/location.h"

namespace cratewell {

struct FileContent
{
    enum class State { Absent, Unreadable, Read };
    State state = State::Absent;
    QByteArray bytes;
};

// Unreadable as well when it is no regular file or longer than `limit` bytes; never blocks on a pipe.
FileContent readRegularFile(const Location &file, qint64 limit);

// Makes the file's folder when needed and puts `content` there in one step: readers see the old bytes or the
// new ones. False when the disk refuses; the old file is then untouched.
bool replaceFile(const Location &file, const QByteArray &content);

// Removes what a killed process left of its own replaceFile.
void removeAbandonedTemporaries(const Location &file);

// Moves the file to a free name beside it ("defaults.json.kept", ".kept-2"...). False when it cannot.
bool keepAside(const Location &file);

} // namespace cratewell
