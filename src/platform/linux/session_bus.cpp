#include "platform/linux/session_bus.h"

#include <unistd.h>

namespace cratewell {

QDBusConnection sessionBusIfAny()
{
    const QByteArray runtimeFolder = qgetenv("XDG_RUNTIME_DIR");
    const QByteArray socket = runtimeFolder + "/bus";
    const bool hasSocket = !runtimeFolder.isEmpty() && ::access(socket.constData(), F_OK) == 0;
    if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") && !hasSocket)
        return QDBusConnection(QStringLiteral("none"));
    return QDBusConnection::sessionBus();
}

} // namespace cratewell
