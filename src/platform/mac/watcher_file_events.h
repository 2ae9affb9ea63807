#pragma once

#include "platform/file_events.h"

#include <memory>

namespace cratewell {

// File events by QFileSystemWatcher on every visible folder, and by comparing the whole tree every few
// seconds for what it does not report: files overwritten in place, a root that comes back.
class WatcherFileEvents final : public FileEvents
{
    Q_OBJECT
public:
    WatcherFileEvents();
    ~WatcherFileEvents() override;

    void watch(const Location &root, const std::vector<QByteArray> &entries, Time since) override;
    void stop() override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace cratewell
