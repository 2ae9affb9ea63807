#pragma once

#include "platform/applications.h"
#include "platform/location.h"

#include <QTimer>
#include <memory>

namespace cratewell {

class X11Windows;

// Editors found among the processes by the file they run, once a second while somebody listens; their windows
// through X11, where there is one.
class ProcApplications final : public Applications
{
    Q_OBJECT
public:
    // `processes` is laid out like /proc.
    explicit ProcApplications(Location processes);
    ~ProcApplications() override;

    QStringList running() override;
    [[nodiscard]] Result<void> bringToFront(const QString &identifier) override;

protected:
    void connectNotify(const QMetaMethod &signal) override;
    void disconnectNotify(const QMetaMethod &signal) override;

private:
    QStringList look() const;
    void check();
    X11Windows &ensureWindows();

    const Location m_processes;
    QTimer m_timer;
    QStringList m_last;
    std::unique_ptr<X11Windows> m_windows;
};

} // namespace cratewell
