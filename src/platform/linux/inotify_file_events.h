#pragma once

#include "platform/file_events.h"

#include <memory>

namespace cratewell {

// File events by inotify, read in a thread of its own.
class InotifyFileEvents final : public FileEvents
{
    Q_OBJECT
public:
    InotifyFileEvents();
    ~InotifyFileEvents() override;

    void watch(const Location &root, const std::vector<QByteArray> &entries, Time since) override;
    void stop() override;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace cratewell
