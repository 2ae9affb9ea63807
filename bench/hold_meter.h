#pragma once

#include <QObject>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

class QQuickWindow;

namespace cratewell {

// Tells how long the main thread was not there for events: another thread knocks every half millisecond, and
// the longest time until a knock was answered counts. Painting is taken off, because only the software back
// end paints on the main thread. Lives on the main thread.
class HoldMeter : public QObject
{
public:
    explicit HoldMeter(QQuickWindow &window);
    ~HoldMeter() override;

    double longestMilliseconds() const { return m_longest; }

private:
    using Clock = std::chrono::steady_clock;
    struct Span
    {
        Clock::time_point from;
        Clock::time_point to;
    };

    void answer(Clock::time_point knock);

    std::vector<Span> m_painting;
    Clock::time_point m_paintingSince;
    double m_longest = 0;
    std::atomic<bool> m_answered = true;
    std::jthread m_knocking;
};

} // namespace cratewell
