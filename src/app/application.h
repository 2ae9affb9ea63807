#pragma once

#include "platform/system_paths.h"
#include "vault/startup_maintenance.h"

#include <QObject>
#include <memory>

class QQuickWindow;

namespace cratewell {

class Appearance;
class Applications;
class AppState;
class Defaults;
class FileChooser;
class FileEvents;
class Notifications;
class Prefs;
class Vault;
class Workspace;

// What the program takes from the operating system. Tests replace what they need to.
struct Services
{
    std::unique_ptr<Defaults> defaults;
    std::unique_ptr<FileEvents> fileEvents;
    std::unique_ptr<Applications> applications;
    std::unique_ptr<Appearance> appearance;
    std::unique_ptr<Workspace> workspace;
    // Null for the desktop's own, which is looked for when it is needed.
    std::unique_ptr<FileChooser> fileChooser;

    static Services native(const SystemPaths &paths);
    ~Services();
    Services();
    Services(Services &&) noexcept;
    Services &operator=(Services &&) noexcept;
};

// Makes every long-lived object, connects them and shows the window: the only place where that happens. One
// for the life of the process, on the main thread, inside a running QGuiApplication.
class Application : public QObject
{
    Q_OBJECT
public:
    Application(const SystemPaths &paths, Services services);
    ~Application() override;

    // Starts the vault and the inserter, then loads and shows the window. False when the window cannot be
    // loaded.
    bool launch(StartupMaintenance maintenance = StartupMaintenance::Run);
    // Shows the window, also when it was closed, and asks for the focus.
    void bringToFront();
    // Ends the work on files. Everything that was changed is on disk when this returns.
    void drain();

    Prefs &prefs();
    Vault &vault();
    AppState &state();
    Notifications &notifications();
    // Null before launch().
    QQuickWindow *window() const;

private:
    void connectRooms();
    void applyIcon();
    void applyPin();

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace cratewell
