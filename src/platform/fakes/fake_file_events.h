#pragma once

#include "platform/file_events.h"

namespace cratewell {

// Follows nothing; a test says when something changed.
class FakeFileEvents final : public FileEvents
{
public:
    void watch(const Location &root, const std::vector<QByteArray> &, Time) override
    {
        m_root = root;
        m_watched += root;
    }
    void stop() override { m_root = {}; }

    void notifyChanged() { Q_EMIT changed(); }
    void notifyLimitReached() { Q_EMIT limitReached(); }

    // Nowhere while nothing is followed.
    const Location &root() const { return m_root; }
    // Every root that was ever followed, in order.
    const QList<Location> &watched() const { return m_watched; }

private:
    Location m_root;
    QList<Location> m_watched;
};

} // namespace cratewell
