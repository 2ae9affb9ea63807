#include "platform/internal/system_layout.h"

#include <array>
#include <mach-o/dyld.h>

namespace cratewell {

SystemLayout systemLayout()
{
    return {"Library/Application Support/Blackmagic Design/DaVinci Resolve/Developer/Scripting",
            "Applications/DaVinci Resolve/DaVinci Resolve.app/Contents/Libraries/Fusion/fusionscript.so",
            "Library/Application Support/Blackmagic Design/DaVinci Resolve/Fusion/Scripts/Utility"};
}

Location executableFolder()
{
    std::array<char, 4096> program{};
    uint32_t size = program.size();
    if (_NSGetExecutablePath(program.data(), &size) != 0)
        return {};
    return Location::fromBytes(program.data()).resolved().parent();
}

} // namespace cratewell
