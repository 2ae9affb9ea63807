#pragma once

#include "platform/system_paths.h"

#include <QProcessEnvironment>
#include <QString>

namespace cratewell {

// The text for an interpreter outside Resolve; its arguments are the request file and the id that the request
// must have.
QString externalResolveScript();
// `inherited` with what Resolve's scripting module needs to be found.
QProcessEnvironment resolveEnvironment(const SystemPaths &paths, QProcessEnvironment inherited);

} // namespace cratewell
