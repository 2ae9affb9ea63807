#pragma once

#include <QDBusConnection>

namespace cratewell {

// The user's session bus; a connection that is not connected where there is none. Never starts one, as the
// library would.
QDBusConnection sessionBusIfAny();

} // namespace cratewell
