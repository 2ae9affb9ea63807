#pragma once

#include <QObject>
#include <QProcessEnvironment>
#include <optional>

namespace cratewell {

class Application;

// What the environment asks of window-capture mode: pictures of the window in a given state, with nobody at
// the keyboard.
struct WindowCapturePlan
{
    QString prefix;        // pictures are PREFIX-1.png and PREFIX-2.png
    QString scope;         // "importer", "trash", "plugin:PAGE"; anything else leaves the scope
    QStringList fileNames; // assets to select, the first one focused

    // Nothing when CRATEWELL_SNAPSHOT is not set.
    static std::optional<WindowCapturePlan> fromEnvironment(const QProcessEnvironment &environment);
};

// Sets the state after 2.5 s and takes the pictures after 5 s and 8 s; the program keeps running. Failures to
// write are ignored.
void scheduleWindowCaptures(Application &application, const WindowCapturePlan &plan);
// The state change alone.
void applyCaptureState(Application &application, const WindowCapturePlan &plan);

} // namespace cratewell
