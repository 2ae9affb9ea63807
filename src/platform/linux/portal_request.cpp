#include "platform/linux/portal_request.h"

#include "platform/linux/portal_names.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>

namespace cratewell {

using namespace Qt::StringLiterals;

PortalRequest::PortalRequest(QDBusConnection bus, const QString &token, Done done, QObject *parent)
    : QObject(parent), m_bus(std::move(bus)), m_done(std::move(done))
{
    QString sender = m_bus.baseService().mid(1);
    sender.replace(u'.', u'_');
    listen(u"%1/request/%2/%3"_s.arg(portal::path(), sender, token));
    auto *watcher =
        new QDBusServiceWatcher(portal::service(), m_bus, QDBusServiceWatcher::WatchForUnregistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, [this] { finish({}); });
}

void PortalRequest::listen(const QString &path)
{
    if (path == m_path)
        return;
    m_path = path;
    m_bus.connect(portal::service(), path, portal::request(), u"Response"_s, this,
                  SLOT(respond(uint, QVariantMap)));
}

void PortalRequest::send(const QDBusMessage &call)
{
    auto *answer = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<QDBusObjectPath> reply = *answer;
        // Old portals choose a path of their own.
        if (reply.isValid())
            listen(reply.value().path());
        else
            finish({});
    });
}

void PortalRequest::respond(uint code, const QVariantMap &results)
{
    finish(code == 0 ? results : QVariantMap());
}

void PortalRequest::finish(const QVariantMap &results)
{
    if (const Done done = std::exchange(m_done, {})) {
        deleteLater();
        done(results);
    }
}

} // namespace cratewell
