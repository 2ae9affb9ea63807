#include "platform/native.h"

#include "platform/file_chooser.h"
#include "platform/mac/default_read_appearance.h"
#include "platform/mac/finder_workspace.h"
#include "platform/mac/listed_applications.h"
#include "platform/mac/user_defaults.h"
#include "platform/mac/watcher_file_events.h"

namespace cratewell {

std::unique_ptr<Defaults> makeDefaults(const SystemPaths &)
{
    return std::make_unique<UserDefaults>(
        std::make_unique<QSettings>(QStringLiteral("Cratewell"), QStringLiteral("Cratewell")));
}

std::unique_ptr<FileEvents> makeFileEvents()
{
    return std::make_unique<WatcherFileEvents>();
}

std::unique_ptr<Applications> makeApplications(const SystemPaths &)
{
    return std::make_unique<ListedApplications>();
}

std::unique_ptr<Appearance> makeAppearance()
{
    return std::make_unique<DefaultReadAppearance>();
}

std::unique_ptr<Workspace> makeWorkspace()
{
    return std::make_unique<FinderWorkspace>();
}

std::unique_ptr<FileChooser> makeFileChooser()
{
    return nullptr;
}

} // namespace cratewell
