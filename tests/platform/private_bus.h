#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QMutex>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <functional>
#include <memory>

namespace cratewell::test {

// A message bus of its own, with nobody on it but whom the test brings.
class PrivateBus
{
public:
    PrivateBus();
    ~PrivateBus();

    bool isRunning() const { return !m_address.isEmpty(); }
    // A new connection each time; closed with the bus.
    QDBusConnection connect();

private:
    QTemporaryDir m_folder;
    QProcess m_daemon;
    QString m_address;
    QStringList m_connections;
};

// Something that answers every call to one service name, from a thread of its own, so that callers may wait.
class StandInService
{
public:
    // Nothing: no answer, ever.
    using Answer = std::function<std::optional<QDBusMessage>(const QDBusMessage &)>;

    StandInService(PrivateBus &bus, const QString &name, Answer answer);
    ~StandInService();

    QList<QDBusMessage> calls(const QString &member) const;
    void signal(const QString &path, const QString &interface, const QString &member,
                const QVariantList &arguments);

private:
    class Object;
    QDBusConnection m_connection;
    QString m_name;
    QThread m_thread;
    std::unique_ptr<Object> m_object;
};

} // namespace cratewell::test
