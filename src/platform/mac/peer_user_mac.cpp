#include "platform/internal/peer_user.h"

#include <unistd.h>

namespace cratewell {

bool isOwnUser(qintptr socketDescriptor)
{
    uid_t user = 0;
    gid_t group = 0;
    return ::getpeereid(int(socketDescriptor), &user, &group) == 0 && user == ::getuid();
}

} // namespace cratewell
