#pragma once

#include "platform/system_paths.h"

#include <QProcessEnvironment>
#include <QString>

namespace cratewell {

// The text for an interpreter outside Resolve; its one argument is the request file.
QString externalResolveScript();
// `inherited` with what Resolve's scripting module needs to be found.
QProcessEnvironment resolveEnvironment(const SystemPaths &paths, QProcessEnvironment inherited);

} // namespace cratewell
