#pragma once

class QObject;
class QQmlEngine;

namespace cratewell {

class Appearance;
class AppState;
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
};

// To be called before the engine loads anything; makes the bundled fonts known as well.
void installUiContext(QQmlEngine &engine, const UiContext &objects);
// The objects behind `engine`; installUiContext must have been called.
const UiContext &uiContext(const QQmlEngine &engine);
// The same for an object that QML made.
const UiContext &uiContext(const QObject &qmlObject);

} // namespace cratewell
