#pragma once

#include "platform/file_events.h"

#include <memory>

namespace cratewell {

// File events by inotify, read in a thread of its own. Hidden folders (a leading dot) are not followed.
class InotifyFileEvents final : public FileEvents
{
    Q_OBJECT
public:
    InotifyFileEvents();
    ~InotifyFileEvents() override;

    void watch(const Location &root, Time since) override;
    void stop() override;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace cratewell
