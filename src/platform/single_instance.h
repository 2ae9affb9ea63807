#pragma once

#include "platform/location.h"

#include <QObject>
#include <memory>

namespace cratewell {

// One running program per defaults file and user. The name lives in the system's abstract socket space, so a
// killed program leaves nothing behind.
class SingleInstance : public QObject
{
    Q_OBJECT
public:
    explicit SingleInstance(const Location &defaultsFile);
    ~SingleInstance() override;

    // True when this process is the one; otherwise the running one has been asked to show itself (waits at
    // most two seconds for its word).
    bool claim();

Q_SIGNALS:
    // Another start asked us to come forward.
    void raiseRequested();

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace cratewell
