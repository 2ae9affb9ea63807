#include "app/window_capture.h"

#include "app/application.h"
#include "state/app_state.h"
#include "vault/vault.h"

#include <QImage>
#include <QQuickWindow>
#include <QTimer>

#include <chrono>

namespace cratewell {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

constexpr auto stateDelay = 2500ms;
constexpr std::array captureDelays{5000ms, 8000ms};

void captureWindow(const Application &application, const QString &path)
{
    QQuickWindow *window = application.window();
    if (window && window->isVisible())
        window->grabWindow().save(path, "PNG");
}

std::optional<Scope> scopeNamed(const QString &text)
{
    static const auto pluginPrefix = u"plugin:"_s;
    if (text == "importer"_L1)
        return Scope::of(Scope::Kind::Importer);
    if (text == "trash"_L1)
        return Scope::of(Scope::Kind::Trash);
    if (text.startsWith(pluginPrefix))
        return Scope::plugin(text.mid(pluginPrefix.size()));
    return {};
}

} // namespace

std::optional<WindowCapturePlan> WindowCapturePlan::fromEnvironment(const QProcessEnvironment &environment)
{
    const QString prefix = environment.value(u"CRATEWELL_SNAPSHOT"_s);
    if (prefix.isEmpty())
        return {};
    return WindowCapturePlan{prefix, environment.value(u"CRATEWELL_SCOPE"_s),
                             environment.value(u"CRATEWELL_SELECT"_s).split(u',', Qt::SkipEmptyParts)};
}

void applyCaptureState(Application &application, const WindowCapturePlan &plan)
{
    AppState &state = application.state();
    if (const auto scope = scopeNamed(plan.scope))
        state.setScope(*scope);

    const VaultSnapshot &snapshot = *application.vault().snapshot();
    std::optional<Asset> first;
    QSet<Location> found;
    for (const QString &name : plan.fileNames) {
        for (AssetIndex index = 0; index < snapshot.size(); ++index) {
            const Asset &asset = snapshot.asset(index);
            if (asset.url.name() != name)
                continue;
            if (!first)
                first = asset;
            found.insert(asset.url);
            break;
        }
    }
    if (first) {
        state.setSelection(first);
        state.setSelected(found);
    }
}

void scheduleWindowCaptures(Application &application, const WindowCapturePlan &plan)
{
    QTimer::singleShot(stateDelay, &application,
                       [&application, plan] { applyCaptureState(application, plan); });
    for (size_t i = 0; i < captureDelays.size(); ++i) {
        const QString path = plan.prefix + u"-%1.png"_s.arg(i + 1);
        QTimer::singleShot(captureDelays[i], &application,
                           [&application, path] { captureWindow(application, path); });
    }
}

} // namespace cratewell
