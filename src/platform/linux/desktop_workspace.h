#pragma once

#include "platform/workspace.h"

#include <QDBusConnection>
#include <QObject>

namespace cratewell {

// The file manager through D-Bus; where none answers, the items' folders are opened instead.
class DesktopWorkspace final : public Workspace
{
public:
    explicit DesktopWorkspace(QDBusConnection bus);

    void reveal(const QList<Location> &items) override;
    void open(const Location &folder) override;

private:
    void openFolders(const QList<Location> &items);

    QDBusConnection m_bus;
    QObject m_context;
};

} // namespace cratewell
