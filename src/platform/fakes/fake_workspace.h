#pragma once

#include "platform/workspace.h"

namespace cratewell {

// Notes what it was asked to show.
class FakeWorkspace final : public Workspace
{
public:
    void reveal(const QList<Location> &items) override { m_revealed.append(items); }
    void open(const Location &folder) override { m_opened += folder; }

    const QList<QList<Location>> &revealed() const { return m_revealed; }
    const QList<Location> &opened() const { return m_opened; }

private:
    QList<QList<Location>> m_revealed;
    QList<Location> m_opened;
};

} // namespace cratewell
