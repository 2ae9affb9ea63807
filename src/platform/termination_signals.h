#pragma once

#include <QObject>
#include <memory>

namespace cratewell {

// Turns SIGTERM, SIGINT and SIGHUP into a Qt signal on the thread that made it. At most one lives at a time.
// A second signal of the same number ends the program at once, so a shutdown that hangs can be broken off.
class TerminationSignals final : public QObject
{
    Q_OBJECT
public:
    TerminationSignals();
    ~TerminationSignals() override;

Q_SIGNALS:
    void terminationRequested();

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace cratewell
