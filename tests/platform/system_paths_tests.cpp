#include "platform/system_paths.h"

#include <QCoreApplication>
#include <QProcessEnvironment>
#include <QScopeGuard>
#include <gtest/gtest.h>

namespace cratewell {
namespace {

TEST(SystemPaths, FollowTheEnvironmentOrAnotherHome)
{
    const char *const names[] = {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "CRATEWELL_WORKER"};
    const auto before = QProcessEnvironment::systemEnvironment();
    // An empty variable counts as none.
    const auto restore = qScopeGuard([&] {
        for (const char *name : names)
            qputenv(name, before.value(QString::fromLatin1(name)).toUtf8());
    });
    qputenv("HOME", "/home/someone/");
    qputenv("XDG_CONFIG_HOME", "");
    qputenv("XDG_CACHE_HOME", "relative/places/do/not/count");
    qputenv("CRATEWELL_WORKER", "");
    SystemPaths paths = SystemPaths::standard();
    EXPECT_EQ(paths.home.bytes(), "/home/someone");
    EXPECT_EQ(paths.defaultsFile().bytes(), "/home/someone/.config/cratewell/defaults.json");
    EXPECT_EQ(paths.cacheHome.bytes(), "/home/someone/.cache");
    EXPECT_EQ(paths.defaultVault().bytes(), "/home/someone/Movies/Cratewell Vault");
    EXPECT_EQ(paths.supportFolder().bytes(), "/home/someone/Library/Application Support/Cratewell");
    EXPECT_EQ(paths.workerProgram.name(), QStringLiteral("cratewell-worker"));
    EXPECT_EQ(paths.workerProgram.parent(), Location::fromText(QCoreApplication::applicationDirPath()));

    qputenv("XDG_CONFIG_HOME", "/elsewhere/config");
    qputenv("CRATEWELL_WORKER", "/build/worker");
    paths = SystemPaths::standard();
    EXPECT_EQ(paths.defaultsFile().bytes(), "/elsewhere/config/cratewell/defaults.json");
    EXPECT_EQ(paths.workerProgram.bytes(), "/build/worker");

    const Location other = Location::fromBytes("/tmp/other");
    paths = SystemPaths::below(other);
    for (const Location &place : {paths.configHome, paths.cacheHome, paths.processes, paths.python,
                                  paths.resolveApi, paths.resolveLibrary, paths.resolveUserScripts,
                                  paths.defaultsFile(), paths.defaultVault(), paths.supportFolder()})
        EXPECT_TRUE(place.isInside(other)) << place.c_str();
}

} // namespace
} // namespace cratewell
