#include "private_bus.h"

#include <QFile>

namespace cratewell::test {

using namespace Qt::StringLiterals;

namespace {

constexpr char configuration[] =
    "<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen><auth>EXTERNAL</auth>"
    "<policy context='default'><allow send_destination='*' eavesdrop='true'/><allow eavesdrop='true'/>"
    "<allow own='*'/></policy></busconfig>";

} // namespace

PrivateBus::PrivateBus()
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

PrivateBus::~PrivateBus()
{
    for (const QString &name : m_connections)
        QDBusConnection::disconnectFromBus(name);
    m_daemon.kill();
    m_daemon.waitForFinished();
}

QDBusConnection PrivateBus::connect()
{
    static int count = 0;
    m_connections += u"private%1"_s.arg(++count);
    return QDBusConnection::connectToBus(m_address, m_connections.last());
}

class StandInService::Object final : public QDBusVirtualObject
{
public:
    explicit Object(Answer answer) : m_answer(std::move(answer)) {}

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
    QList<QDBusMessage> calls() const
    {
        const QMutexLocker lock(&m_mutex);
        return m_calls;
    }

private:
    Answer m_answer;
    mutable QMutex m_mutex;
    QList<QDBusMessage> m_calls;
};

StandInService::StandInService(PrivateBus &bus, const QString &name, Answer answer)
    : m_connection(bus.connect()), m_name(name), m_object(std::make_unique<Object>(std::move(answer)))
{
    // Registering gives the object a child, so it comes before the move.
    m_connection.registerVirtualObject(u"/"_s, m_object.get(), QDBusConnection::SubPath);
    m_object->moveToThread(&m_thread);
    m_thread.start();
    m_connection.registerService(name);
}

StandInService::~StandInService()
{
    m_connection.unregisterService(m_name);
    m_connection.unregisterObject(u"/"_s, QDBusConnection::UnregisterTree);
    m_thread.quit();
    m_thread.wait();
}

QList<QDBusMessage> StandInService::calls(const QString &member) const
{
    QList<QDBusMessage> found;
    for (const QDBusMessage &call : m_object->calls()) {
        if (call.member() == member)
            found += call;
    }
    return found;
}

void StandInService::signal(const QString &path, const QString &interface, const QString &member,
                            const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createSignal(path, interface, member);
    message.setArguments(arguments);
    m_connection.send(message);
}

} // namespace cratewell::test
