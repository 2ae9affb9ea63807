#pragma once

class QObject;
class QQmlEngine;

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
struct UiObjects
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

// To be called before the engine loads anything; makes the bundled fonts known as well.
void installUiObjects(QQmlEngine &engine, const UiObjects &objects);
// The objects behind `engine`; installUiObjects must have been called.
const UiObjects &uiObjects(const QQmlEngine &engine);
// The same for an object that QML made.
const UiObjects &uiObjects(const QObject &qmlObject);

} // namespace cratewell
