#pragma once

#include "platform/applications.h"
#include "platform/mac/command_line_tools.h"

#include <QTimer>

namespace cratewell {

// One entry of what `lsappinfo list` prints.
struct ListedApplication
{
    QString serial; // "ASN:0x0-0x1d01d", how `lsappinfo front` names it
    QString identifier;
};
QList<ListedApplication> parseApplicationList(QByteArrayView output);

// Applications as `lsappinfo` lists them, every second while somebody listens.
class ListedApplications final : public Applications
{
    Q_OBJECT
public:
    explicit ListedApplications(const Location &toolsFolder = CommandLineTools::systemFolder());

    // Waits for the list, half a second at most; then the last list counts.
    QStringList running() override;
    [[nodiscard]] Result<void> bringToFront(const QString &identifier) override;

protected:
    void connectNotify(const QMetaMethod &signal) override;
    void disconnectNotify(const QMetaMethod &signal) override;

private:
    void look();
    void take(const QList<ListedApplication> &listed, const QString &front);

    CommandLineTools m_tools;
    QTimer m_timer;
    QList<ListedApplication> m_listed;
    QString m_front;
    bool m_looking = false;
};

} // namespace cratewell
