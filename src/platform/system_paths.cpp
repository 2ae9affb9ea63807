#include "platform/system_paths.h"

#include "platform/internal/system_layout.h"

#include <QtGlobal>
#include <pwd.h>
#include <unistd.h>

namespace cratewell {

namespace {

Location fromEnvironment(const char *variable, const Location &otherwise)
{
    const Location place = Location::fromBytes(qgetenv(variable));
    return place.isEmpty() ? otherwise : place;
}

Location homeFromAccount()
{
    const passwd *account = ::getpwuid(::getuid());
    return account && account->pw_dir ? Location::fromBytes(account->pw_dir) : Location::fromBytes("/");
}

Location below(const Location &folder, QByteArrayView path)
{
    return Location::fromBytes(QByteArray(folder.bytes()).append('/').append(path));
}

SystemPaths layout(const Location &home, const Location &systemRoot)
{
    const SystemLayout places = systemLayout();
    SystemPaths paths;
    paths.home = home;
    paths.configHome = below(home, ".config");
    paths.cacheHome = below(home, ".cache");
    paths.processes = below(systemRoot, "proc");
    paths.python = below(systemRoot, "usr/bin/python3");
    paths.resolveApi = below(systemRoot, places.resolveApi);
    paths.resolveLibrary = below(systemRoot, places.resolveLibrary);
    paths.resolveUserScripts = below(home, places.resolveUserScripts);
    paths.workerProgram = fromEnvironment("CRATEWELL_WORKER", executableFolder().child("cratewell-worker"));
    return paths;
}

} // namespace

SystemPaths SystemPaths::standard()
{
    SystemPaths paths = layout(fromEnvironment("HOME", homeFromAccount()), Location::fromBytes("/"));
    paths.configHome = fromEnvironment("XDG_CONFIG_HOME", paths.configHome);
    paths.cacheHome = fromEnvironment("XDG_CACHE_HOME", paths.cacheHome);
    return paths;
}

SystemPaths SystemPaths::below(const Location &home)
{
    return layout(home, home);
}

Location SystemPaths::defaultsFile() const
{
    return cratewell::below(configHome, "cratewell/defaults.json");
}

Location SystemPaths::defaultVault() const
{
    return cratewell::below(home, "Movies/Cratewell Vault");
}

Location SystemPaths::supportFolder() const
{
    return cratewell::below(home, "Library/Application Support/Cratewell");
}

} // namespace cratewell
