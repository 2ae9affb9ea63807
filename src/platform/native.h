#pragma once

#include "platform/system_paths.h"

#include <memory>

namespace cratewell {

class Appearance;
class Applications;
class Defaults;
class FileChooser;
class FileEvents;
class Workspace;

// The services of the system this program was built for.
std::unique_ptr<Defaults> makeDefaults(const SystemPaths &paths);
std::unique_ptr<FileEvents> makeFileEvents();
std::unique_ptr<Applications> makeApplications(const SystemPaths &paths);
std::unique_ptr<Appearance> makeAppearance();
std::unique_ptr<Workspace> makeWorkspace();
// The desktop portal's chooser; null where the desktop has none (the program then shows its own).
std::unique_ptr<FileChooser> makeFileChooser();

} // namespace cratewell
