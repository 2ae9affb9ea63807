#pragma once

#include <QTimer>
#include <functional>

namespace cratewell {

// Tells the first of a burst at once, the rest at most every 0.4 s, the last always. Main thread.
class ChangeThrottle
{
public:
    explicit ChangeThrottle(std::function<void()> report);

    void notice();
    // Forgets what was noticed and not reported.
    void reset();

private:
    void notify();

    std::function<void()> m_notify;
    QTimer m_pause;
    bool m_again = false;
};

} // namespace cratewell
