#include "platform/native.h"

#include "platform/json_defaults.h"
#include "platform/linux/desktop_workspace.h"
#include "platform/linux/inotify_file_events.h"
#include "platform/linux/portal_appearance.h"
#include "platform/linux/portal_file_chooser.h"
#include "platform/linux/proc_applications.h"
#include "platform/linux/session_bus.h"

namespace cratewell {

std::unique_ptr<Defaults> makeDefaults(const SystemPaths &paths)
{
    return std::make_unique<JsonDefaults>(paths.defaultsFile());
}

std::unique_ptr<FileEvents> makeFileEvents()
{
    return std::make_unique<InotifyFileEvents>();
}

std::unique_ptr<Applications> makeApplications(const SystemPaths &paths)
{
    return std::make_unique<ProcApplications>(paths.processes);
}

std::unique_ptr<Appearance> makeAppearance()
{
    return std::make_unique<PortalAppearance>(sessionBusIfAny());
}

std::unique_ptr<Workspace> makeWorkspace()
{
    return std::make_unique<DesktopWorkspace>(sessionBusIfAny());
}

std::unique_ptr<FileChooser> makeFileChooser()
{
    return PortalFileChooser::create(sessionBusIfAny());
}

} // namespace cratewell
