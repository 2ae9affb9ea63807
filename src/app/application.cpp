#include "app/application.h"

#include "app/lazy_file_chooser.h"
#include "app/start_trace.h"
#include "integrations/inserter.h"
#include "integrations/premiere_bridge.h"
#include "integrations/resolve_bridge.h"
#include "media/media.h"
#include "platform/appearance.h"
#include "platform/applications.h"
#include "platform/defaults.h"
#include "platform/file_chooser.h"
#include "platform/file_events.h"
#include "platform/native.h"
#include "platform/workspace.h"
#include "state/app_state.h"
#include "state/notifications.h"
#include "state/prefs.h"
#include "ui/shell/asset_actions.h"
#include "ui/shell/dialog_file_chooser.h"
#include "ui/shell/icon_loader.h"
#include "ui/shell/ui_engine.h"
#include "vault/vault.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QQuickWindow>

namespace cratewell {

using namespace Qt::StringLiterals;

Services::Services() = default;
Services::~Services() = default;
Services::Services(Services &&) noexcept = default;
Services &Services::operator=(Services &&) noexcept = default;

Services Services::native(const SystemPaths &paths)
{
    Services services;
    services.defaults = makeDefaults(paths);
    services.fileEvents = makeFileEvents();
    services.applications = makeApplications(paths);
    services.appearance = makeAppearance();
    services.workspace = makeWorkspace();
    return services;
}

namespace {

constexpr int iconPixels = 256; // the largest that docks and switchers show

} // namespace

// Declaration order is dependency order: the engine, declared last, dies first.
struct Application::Private
{
    Private(const SystemPaths &systemPaths, Services given)
        : services(std::move(given)), prefs(*services.defaults, systemPaths),
          vault(Location::fromText(prefs.vaultPath()), *services.defaults, std::move(services.fileEvents)),
          chooser([this] { return makeChooser(); }), state(vault, prefs), media(vault, prefs, systemPaths),
          resolve(prefs, systemPaths),
          inserter(prefs, state, *services.applications, notifications, resolve, premiere),
          actions(vault, prefs, state, inserter, *services.workspace, chooser),
          engine({prefs, state, vault, notifications, inserter, media, *services.appearance,
                  *services.defaults, *services.workspace, actions})
    {
    }

    std::unique_ptr<FileChooser> makeChooser();
    void report(const QString &text, bool ok, const std::vector<TrashItem> &trashed);

    Services services;
    Prefs prefs;
    Vault vault;
    LazyFileChooser chooser;
    AppState state;
    Notifications notifications;
    Media media;
    ResolveBridge resolve;
    PremiereBridge premiere;
    Inserter inserter;
    AssetActions actions;
    IconLoader icons{[](IconStyle style) { return renderIcon(style, iconPixels); }};
    UiEngine engine;
};

std::unique_ptr<FileChooser> Application::Private::makeChooser()
{
    if (services.fileChooser)
        return std::move(services.fileChooser);
    if (auto desktop = makeFileChooser())
        return desktop;
    return std::make_unique<DialogFileChooser>(engine);
}

void Application::Private::report(const QString &text, bool ok, const std::vector<TrashItem> &trashed)
{
    using Severity = Notification::Severity;
    Notification message{text, ok ? Severity::Success : Severity::Warning};
    if (!trashed.empty()) {
        message.actionText = u"Undo"_s;
        message.action = [this, trashed] { actions.undoTrash(trashed); };
    }
    notifications.show(message);
}

Application::Application(const SystemPaths &paths, Services services)
    : d(std::make_unique<Private>(paths, std::move(services)))
{
    connectRooms();
}

Application::~Application() = default;

void Application::connectRooms()
{
    connect(&d->icons, &IconLoader::ready, this,
            [](const QImage &icon) { QGuiApplication::setWindowIcon(QIcon(QPixmap::fromImage(icon))); });
    connect(&d->vault, &Vault::rootChanged, &d->prefs,
            [this](const Location &root) { d->prefs.setVaultPath(root.text()); });
    connect(&d->vault, &Vault::toast, this,
            [this](const auto &text, bool ok, const auto &trashed) { d->report(text, ok, trashed); });
    connect(&d->vault, &Vault::lastErrorChanged, this, [this] {
        d->notifications.show({d->vault.lastError(), Notification::Severity::Error});
    });
}

bool Application::launch(StartupMaintenance maintenance)
{
    applyIcon();
    // The scan runs beside the loading of the window.
    d->vault.start(maintenance);
    d->inserter.start();

    d->engine.load(QUrl(u"qrc:/qt-project.org/imports/Cratewell/Main.qml"_s));
    if (!window())
        return false;
    traceStart(*window());
    applyPin();
    connect(&d->prefs, &Prefs::pinnedChanged, this, &Application::applyPin);
    connect(&d->prefs, &Prefs::iconStyleChanged, this, &Application::applyIcon);
    bringToFront();
    return true;
}

void Application::applyIcon()
{
    d->icons.request(iconStyleFromRawValue(d->prefs.iconStyle()));
}

void Application::applyPin()
{
    if (window())
        window()->setFlag(Qt::WindowStaysOnTopHint, d->prefs.pinned());
}

void Application::bringToFront()
{
    QQuickWindow *shown = window();
    if (!shown)
        return;
    shown->setWindowStates(shown->windowStates() & ~Qt::WindowMinimized);
    shown->show();
    shown->raise();
    shown->requestActivate();
}

void Application::drain()
{
    d->vault.drain();
    d->services.defaults->drain();
}

Prefs &Application::prefs()
{
    return d->prefs;
}

Vault &Application::vault()
{
    return d->vault;
}

AppState &Application::state()
{
    return d->state;
}

Notifications &Application::notifications()
{
    return d->notifications;
}

QQuickWindow *Application::window() const
{
    const QList<QObject *> roots = d->engine.rootObjects();
    return roots.isEmpty() ? nullptr : qobject_cast<QQuickWindow *>(roots.constFirst());
}

} // namespace cratewell
