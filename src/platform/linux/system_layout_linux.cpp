#include "platform/internal/system_layout.h"

#include <filesystem>

namespace cratewell {

SystemLayout systemLayout()
{
    return {"opt/resolve/Developer/Scripting", "opt/resolve/libs/Fusion/fusionscript.so",
            ".local/share/DaVinciResolve/Fusion/Scripts/Utility"};
}

Location executableFolder()
{
    std::error_code failure;
    const std::string program = std::filesystem::read_symlink("/proc/self/exe", failure).string();
    return Location::fromBytes(program).parent();
}

} // namespace cratewell
