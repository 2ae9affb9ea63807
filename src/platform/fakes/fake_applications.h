#pragma once

#include "platform/applications.h"

namespace cratewell {

// Runs what a test says. Bringing to the front succeeds for whatever runs and is noted.
class FakeApplications final : public Applications
{
public:
    QStringList running() override
    {
        ++m_looks;
        return m_running;
    }
    [[nodiscard]] Result<void> bringToFront(const QString &identifier) override
    {
        m_broughtToFront += identifier;
        if (!m_running.contains(identifier))
            return tl::unexpected(Error{identifier + QStringLiteral(": does not run")});
        return {};
    }

    void setRunning(const QStringList &identifiers)
    {
        m_running = identifiers;
        Q_EMIT changed();
    }
    // Without telling: what a look finds before the desktop has said so.
    void setRunningSilently(const QStringList &identifiers) { m_running = identifiers; }
    void activate(const QString &identifier) { Q_EMIT activated(identifier); }

    int looks() const { return m_looks; }
    const QStringList &broughtToFront() const { return m_broughtToFront; }

private:
    QStringList m_running;
    QStringList m_broughtToFront;
    int m_looks = 0;
};

} // namespace cratewell
