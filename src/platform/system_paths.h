#pragma once

#include "platform/location.h"

namespace cratewell {

// Every fixed place the program touches outside the vault, in one value that tests replace whole.
// The program's own folders follow $HOME, so a demo runs in a home of its own.
struct SystemPaths
{
    Location home;
    Location configHome;         // $XDG_CONFIG_HOME, default home/.config
    Location cacheHome;          // $XDG_CACHE_HOME, default home/.cache
    Location processes;          // /proc
    Location python;             // /usr/bin/python3
    Location resolveApi;         // Resolve's Developer/Scripting folder
    Location resolveLibrary;     // fusionscript.so
    Location resolveUserScripts; // Fusion/Scripts/Utility of this user
    Location workerProgram;      // cratewell-worker beside this executable

    static SystemPaths standard();
    // The standard layout below another home (demo, tests): everything inside it, system places included.
    static SystemPaths below(const Location &home);

    Location defaultsFile() const;  // configHome/cratewell/defaults.json
    Location defaultVault() const;  // home/Movies/Cratewell Vault
    Location supportFolder() const; // home/Library/Application Support/Cratewell (exchange files)
};

} // namespace cratewell
