#pragma once

#include <QtGlobal>

namespace cratewell {

// True when the process at the other end of this local socket belongs to our user.
bool isOwnUser(qintptr socketDescriptor);

} // namespace cratewell
