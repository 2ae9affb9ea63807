#include "platform/internal/peer_user.h"

#include <sys/socket.h>
#include <unistd.h>

namespace cratewell {

bool isOwnUser(qintptr socketDescriptor)
{
    ucred peer = {};
    socklen_t size = sizeof(peer);
    const bool known = ::getsockopt(int(socketDescriptor), SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0;
    return known && peer.uid == ::getuid();
}

} // namespace cratewell
