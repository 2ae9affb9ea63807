#include "platform/system_paths.h"

#include <gtest/gtest.h>

namespace cratewell {
namespace {

TEST(SystemPaths, FollowTheEnvironmentOrAnotherHome)
{
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", "/home/someone/");
    qputenv("XDG_CONFIG_HOME", ""); // counts as none
    qputenv("XDG_CACHE_HOME", "relative/places/do/not/count");
    SystemPaths paths = SystemPaths::standard();
    EXPECT_EQ(paths.defaultsFile().bytes(), "/home/someone/.config/cratewell/defaults.json");
    EXPECT_EQ(paths.cacheHome.bytes(), "/home/someone/.cache");
    EXPECT_EQ(paths.defaultVault().bytes(), "/home/someone/Movies/Cratewell Vault");
    qputenv("XDG_CONFIG_HOME", "/elsewhere/config");
    EXPECT_EQ(SystemPaths::standard().defaultsFile().bytes(), "/elsewhere/config/cratewell/defaults.json");
    qputenv("HOME", home);

    const Location other = Location::fromBytes("/tmp/other");
    paths = SystemPaths::below(other);
    for (const Location &place : {paths.configHome, paths.cacheHome, paths.processes, paths.python,
                                  paths.resolveApi, paths.resolveLibrary, paths.resolveUserScripts,
                                  paths.defaultsFile(), paths.defaultVault(), paths.supportFolder()})
        EXPECT_TRUE(place.isInside(other)) << place.c_str();
}

} // namespace
} // namespace cratewell
