#include "hold_meter.h"

#include <QQuickWindow>

#include <algorithm>

namespace cratewell {

using namespace std::chrono_literals;

HoldMeter::HoldMeter(QQuickWindow &window)
{
    connect(
        &window, &QQuickWindow::beforeSynchronizing, this, [this] { m_paintingSince = Clock::now(); },
        Qt::DirectConnection);
    connect(
        &window, &QQuickWindow::frameSwapped, this,
        [this] {
            m_painting.push_back({m_paintingSince, Clock::now()});
        },
        Qt::DirectConnection);
    m_knocking = std::jthread([this](const std::stop_token &stop) {
        while (!stop.stop_requested()) {
            if (m_answered.exchange(false))
                QMetaObject::invokeMethod(
                    this, [this, knock = Clock::now()] { answer(knock); }, Qt::QueuedConnection);
            std::this_thread::sleep_for(500us);
        }
    });
}

HoldMeter::~HoldMeter() = default;

void HoldMeter::answer(Clock::time_point knock)
{
    auto held = Clock::now() - knock;
    for (const Span &span : m_painting)
        held -= std::max(Clock::duration::zero(), span.to - std::max(span.from, knock));
    m_painting.clear();
    m_longest = std::max(m_longest, std::chrono::duration<double, std::milli>(held).count());
    m_answered = true;
}

} // namespace cratewell
