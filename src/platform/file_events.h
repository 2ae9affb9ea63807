#pragma once

#include "platform/location.h"

#include <QObject>

#include <chrono>
#include <vector>

namespace cratewell {

// Reports that something below a folder changed, at any depth, except in hidden folders and behind links.
// Main thread; signals arrive there. The first change of a burst is reported at once, further ones at most
// every 0.4 s while the burst lasts, and the last is never lost.
class FileEvents : public QObject
{
    Q_OBJECT
public:
    using Time = std::chrono::system_clock::time_point;

    // Starts following `root` (replacing what was followed), also while it does not exist yet or again.
    // `entries` are names in `root` that are followed also when they are links to folders. Returns at once.
    // What changed after `since` and before the system follows is reported when it does.
    virtual void watch(const Location &root, const std::vector<QByteArray> &entries, Time since) = 0;
    virtual void stop() = 0;

Q_SIGNALS:
    void changed();
    // The system watches no more folders: from now on changes there are found by checking every few seconds.
    // Emitted once.
    void limitReached();
};

} // namespace cratewell
