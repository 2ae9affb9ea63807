#pragma once

#include <QTimer>
#include <functional>

namespace cratewell {

// Tells the first of a burst at once, the rest at most every 0.4 s, the last always. Main thread.
class ChangeThrottle
{
public:
    explicit ChangeThrottle(std::function<void()> tell);

    void notice();
    // Forgets what was noticed and not told.
    void reset();

private:
    void told();

    std::function<void()> m_tell;
    QTimer m_pause;
    bool m_again = false;
};

} // namespace cratewell
