#include "platform/system_paths.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

namespace cratewell {

namespace {

// Sets variables for one test and puts the former ones back.
class Environment
{
public:
    void set(const char *name, const QByteArray &value)
    {
        m_former.emplace_back(name, qEnvironmentVariableIsSet(name), qgetenv(name));
        qputenv(name, value);
    }
    ~Environment()
    {
        for (auto former = m_former.rbegin(); former != m_former.rend(); ++former) {
            const auto &[name, wasSet, value] = *former;
            wasSet ? qputenv(name, value) : qunsetenv(name);
        }
    }

private:
    std::vector<std::tuple<const char *, bool, QByteArray>> m_former;
};

TEST(SystemPaths, FollowTheEnvironment)
{
    Environment environment;
    environment.set("HOME", "/home/someone/");
    environment.set("XDG_CONFIG_HOME", "");
    environment.set("XDG_CACHE_HOME", "relative/places/do/not/count");
    environment.set("CRATEWELL_WORKER", "");
    SystemPaths paths = SystemPaths::standard();
    EXPECT_EQ(paths.home.bytes(), "/home/someone");
    EXPECT_EQ(paths.defaultsFile().bytes(), "/home/someone/.config/cratewell/defaults.json");
    EXPECT_EQ(paths.cacheHome.bytes(), "/home/someone/.cache");
    EXPECT_EQ(paths.defaultVault().bytes(), "/home/someone/Movies/Cratewell Vault");
    EXPECT_EQ(paths.supportFolder().bytes(), "/home/someone/Library/Application Support/Cratewell");
    EXPECT_EQ(paths.processes.bytes(), "/proc");
    EXPECT_EQ(paths.resolveApi.bytes(), "/opt/resolve/Developer/Scripting");
    EXPECT_EQ(paths.workerProgram.name(), QStringLiteral("cratewell-worker"));
    EXPECT_EQ(paths.workerProgram.parent(), Location::fromText(QCoreApplication::applicationDirPath()));

    environment.set("XDG_CONFIG_HOME", "/elsewhere/config");
    environment.set("CRATEWELL_WORKER", "/build/worker");
    paths = SystemPaths::standard();
    EXPECT_EQ(paths.defaultsFile().bytes(), "/elsewhere/config/cratewell/defaults.json");
    EXPECT_EQ(paths.workerProgram.bytes(), "/build/worker");
}

TEST(SystemPaths, BelowAnotherHomeStayInsideIt)
{
    Environment environment;
    environment.set("XDG_CONFIG_HOME", "/elsewhere/config");
    const Location home = Location::fromBytes("/tmp/other");
    const SystemPaths paths = SystemPaths::below(home);
    for (const Location &place : {paths.configHome, paths.cacheHome, paths.processes, paths.python,
                                  paths.resolveApi, paths.resolveLibrary, paths.resolveUserScripts,
                                  paths.defaultsFile(), paths.defaultVault(), paths.supportFolder()})
        EXPECT_TRUE(place.isInside(home)) << place.c_str();
}

} // namespace

} // namespace cratewell
