#pragma once

namespace cratewell {

class Appearance;
class AppState;
class Defaults;
class Inserter;
class Media;
class Prefs;
class Vault;
class Workspace;

// The program's objects that the views of one engine show and act on. All must outlive the engine.
struct UiContext
{
    Prefs &prefs;
    AppState &state;
    Vault &vault;
    Inserter &inserter;
    Media &media;
    Appearance &appearance;
    Defaults &defaults;
    Workspace &workspace;
};

} // namespace cratewell
