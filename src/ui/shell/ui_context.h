#pragma once

namespace cratewell {

class Appearance;
class AppState;
class AssetActions;
class Defaults;
class Inserter;
class Media;
class Notifications;
class Prefs;
class Vault;
class Workspace;

// The program's objects that the views of one engine show and act on. All must outlive the engine.
struct UiContext
{
    Prefs &prefs;
    AppState &state;
    Vault &vault;
    Notifications &notifications;
    Inserter &inserter;
    Media &media;
    Appearance &appearance;
    Defaults &defaults;
    Workspace &workspace;
    AssetActions &actions;
};

} // namespace cratewell
