#pragma once

#include "platform/location.h"

#include <QObject>

#include <chrono>

namespace cratewell {

// Tells that something below a folder changed, at any depth, hidden folders (a leading dot) and what lies
// behind links excepted. Main thread; signals arrive there. The first change of a burst is told at once,
// further ones at most every 0.4 s while the burst lasts, and the last is never lost.
class FileEvents : public QObject
{
    Q_OBJECT
public:
    using Time = std::chrono::system_clock::time_point;

    // Starts following `root` (replacing what was followed), also while it does not exist yet or again.
    // Returns at once. Folders that changed after `since` and before the system follows are told of when it
    // does.
    virtual void watch(const Location &root, Time since) = 0;
    virtual void stop() = 0;

Q_SIGNALS:
    void changed();
    // The system watches no more folders: from now on changes there are found by checking every few seconds.
    // Told once.
    void limitReached();
};

} // namespace cratewell
