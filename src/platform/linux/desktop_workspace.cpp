#include "platform/linux/desktop_workspace.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QUrl>

namespace cratewell {

using namespace Qt::StringLiterals;

DesktopWorkspace::DesktopWorkspace(QDBusConnection bus) : m_bus(std::move(bus)) {}

void DesktopWorkspace::reveal(const QList<Location> &items)
{
    if (items.isEmpty())
        return;
    if (!m_bus.isConnected()) {
        openFolders(items);
        return;
    }
    QStringList uris;
    for (const Location &item : items)
        uris += QString::fromLatin1(item.uri());
    const QString manager = u"org.freedesktop.FileManager1"_s;
    QDBusMessage call =
        QDBusMessage::createMethodCall(manager, u"/org/freedesktop/FileManager1"_s, manager, u"ShowItems"_s);
    call << uris << QString();
    auto *answer = new QDBusPendingCallWatcher(m_bus.asyncCall(call), &m_context);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, &m_context, [this, items, answer] {
        if (answer->isError())
            openFolders(items);
        answer->deleteLater();
    });
}

void DesktopWorkspace::open(const Location &folder)
{
    if (!folder.isEmpty())
        QDesktopServices::openUrl(QUrl::fromEncoded(folder.uri()));
}

void DesktopWorkspace::openFolders(const QList<Location> &items)
{
    QList<Location> folders;
    for (const Location &item : items) {
        if (!folders.contains(item.parent()))
            folders += item.parent();
    }
    for (const Location &folder : folders)
        open(folder);
}

} // namespace cratewell
