#include "platform/single_instance.h"

#include "platform/internal/peer_user.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLockFile>
#include <chrono>
#include <unistd.h>

namespace cratewell {

namespace {

constexpr std::chrono::seconds patience(2);
constexpr char question[] = "show\n";
constexpr char answer[] = "ok\n";

enum class Word { Given, None, Gone, Foreign };

int left(const QDeadlineTimer &deadline)
{
    return int(qMax(deadline.remainingTime(), qint64(1)));
}

Word askRunningOne(const QString &name, const QDeadlineTimer &deadline)
{
    QLocalSocket socket;
    socket.setSocketOptions(QLocalSocket::AbstractNamespaceOption);
    socket.connectToServer(name);
    if (!socket.waitForConnected(left(deadline)))
        return Word::Gone;
    if (!isOwnUser(socket.socketDescriptor()))
        return Word::Foreign;
    socket.write(question);
    socket.flush();
    while (!socket.canReadLine() && !deadline.hasExpired()) {
        if (!socket.waitForReadyRead(left(deadline)) && socket.state() != QLocalSocket::ConnectedState)
            return Word::Gone;
    }
    return socket.readLine() == answer ? Word::Given : Word::None;
}

} // namespace

class SingleInstance::Private
{
public:
    Private(SingleInstance &owner, const Location &defaultsFile);
    bool listen();
    void receive();

    SingleInstance &q;
    QString name;
    QLocalServer server;
#ifndef Q_OS_LINUX
    // Without an abstract socket space a killed program leaves its socket behind: the lock shows whose it is.
    std::unique_ptr<QLockFile> lock;
#endif
};

SingleInstance::Private::Private(SingleInstance &owner, const Location &defaultsFile) : q(owner)
{
    const Location file = defaultsFile.resolved();
    const QByteArray digest = QCryptographicHash::hash(file.bytes(), QCryptographicHash::Sha1).toHex();
    name = QStringLiteral("cratewell-%1-%2").arg(::getuid()).arg(QLatin1String(digest));
#ifdef Q_OS_LINUX
    server.setSocketOptions(QLocalServer::AbstractNamespaceOption);
#else
    server.setSocketOptions(QLocalServer::UserAccessOption);
    lock = std::make_unique<QLockFile>(file.text() + QStringLiteral(".lock"));
    lock->setStaleLockTime(0);
#endif
    QObject::connect(&server, &QLocalServer::newConnection, &q, [this] { receive(); });
}

bool SingleInstance::Private::listen()
{
#ifndef Q_OS_LINUX
    if (!lock->tryLock(0))
        return false;
    QLocalServer::removeServer(name);
#endif
    return server.isListening() || server.listen(name);
}

void SingleInstance::Private::receive()
{
    while (QLocalSocket *socket = server.nextPendingConnection()) {
        QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        if (!isOwnUser(socket->socketDescriptor())) {
            socket->abort();
            continue;
        }
        socket->setReadBufferSize(64);
        const auto reply = [this, socket] {
            if (!socket->canReadLine())
                return;
            const bool understood = socket->readLine() == question;
            socket->write(understood ? answer : "?\n");
            socket->disconnectFromServer();
            if (understood)
                Q_EMIT q.raiseRequested();
        };
        QObject::connect(socket, &QLocalSocket::readyRead, &q, reply);
        reply();
    }
}

SingleInstance::SingleInstance(const Location &defaultsFile)
    : d(std::make_unique<Private>(*this, defaultsFile))
{
}

SingleInstance::~SingleInstance() = default;

bool SingleInstance::claim()
{
    const QDeadlineTimer deadline(patience);
    do {
        if (d->listen())
            return true;
        switch (askRunningOne(d->name, deadline)) {
        case Word::Given:
        case Word::None:
            return false;
        case Word::Foreign:
            // Another user took our name to keep us from starting.
            return true;
        case Word::Gone:
            break;
        }
    } while (!deadline.hasExpired());
    return false;
}

} // namespace cratewell
