#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>
#include <functional>

class QDBusMessage;

namespace cratewell {

// One question to the desktop portal that the user answers. Calls `done` exactly once, with nothing when it
// was canceled, refused, or the portal went away, and deletes itself.
class PortalRequest final : public QObject
{
    Q_OBJECT
public:
    using Done = std::function<void(const QVariantMap &)>;

    // `token` is unique among our requests; it goes into the call's options as "handle_token".
    PortalRequest(QDBusConnection bus, const QString &token, Done done, QObject *parent);
    void send(const QDBusMessage &call);

private Q_SLOTS:
    void respond(uint code, const QVariantMap &results);

private:
    void listen(const QString &path);
    void finish(const QVariantMap &results);

    QDBusConnection m_bus;
    QString m_path;
    Done m_done;
};

} // namespace cratewell
