#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QFile>
#include <QMutex>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <functional>

namespace cratewell::test {

using namespace Qt::StringLiterals;

// A message bus of its own, with nobody on it but whom the test brings.
class PrivateBus
{
public:
    PrivateBus()
    {
        QFile file(m_folder.filePath(u"bus.conf"_s));
        if (!file.open(QFile::WriteOnly) || file.write(configuration) < 0)
            return;
        file.close();
        m_daemon.start(u"dbus-daemon"_s,
                       {u"--nofork"_s, u"--print-address"_s, u"--config-file="_s + file.fileName()});
        while (!m_daemon.canReadLine() && m_daemon.waitForReadyRead(10'000)) {
        }
        m_address = QString::fromLatin1(m_daemon.readLine().trimmed());
    }
    ~PrivateBus()
    {
        for (const QString &name : m_connections)
            QDBusConnection::disconnectFromBus(name);
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

    bool isRunning() const { return !m_address.isEmpty(); }
    // A new connection each time; closed with the bus.
    QDBusConnection connect()
    {
        static int count = 0;
        m_connections += u"private%1"_s.arg(++count);
        return QDBusConnection::connectToBus(m_address, m_connections.last());
    }

private:
    static constexpr char configuration[] =
        "<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen><auth>EXTERNAL</auth>"
        "<policy context='default'><allow send_destination='*' eavesdrop='true'/><allow eavesdrop='true'/>"
        "<allow own='*'/></policy></busconfig>";

    QTemporaryDir m_folder;
    QProcess m_daemon;
    QString m_address;
    QStringList m_connections;
};

// Something that answers every call to one service name, from a thread of its own, so that callers may wait.
class StandInService final : public QDBusVirtualObject
{
public:
    // Nothing: no answer, ever.
    using Answer = std::function<std::optional<QDBusMessage>(const QDBusMessage &)>;

    StandInService(PrivateBus &bus, const QString &name, Answer answer)
        : m_connection(bus.connect()), m_name(name), m_answer(std::move(answer))
    {
        // Registering gives the object a child, so it comes before the move.
        m_connection.registerVirtualObject(u"/"_s, this, QDBusConnection::SubPath);
        moveToThread(&m_thread);
        m_thread.start();
        m_connection.registerService(name);
    }
    ~StandInService() override
    {
        m_connection.unregisterService(m_name);
        m_connection.unregisterObject(u"/"_s, QDBusConnection::UnregisterTree);
        m_thread.quit();
        m_thread.wait();
    }

    QList<QDBusMessage> calls(const QString &member) const
    {
        const QMutexLocker lock(&m_mutex);
        QList<QDBusMessage> found = m_calls;
        found.removeIf([&](const QDBusMessage &call) { return call.member() != member; });
        return found;
    }
    void signal(const QString &path, const QString &interface, const QString &member,
                const QVariantList &arguments)
    {
        QDBusMessage message = QDBusMessage::createSignal(path, interface, member);
        message.setArguments(arguments);
        m_connection.send(message);
    }

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        {
            const QMutexLocker lock(&m_mutex);
            m_calls += message;
        }
        if (const auto answer = m_answer(message))
            connection.send(*answer);
        return true;
    }

private:
    QDBusConnection m_connection;
    QString m_name;
    Answer m_answer;
    mutable QMutex m_mutex;
    QList<QDBusMessage> m_calls;
    QThread m_thread;
};

} // namespace cratewell::test
