#include "integrations/inserter.h"

#include "media/blend_mode.h"
#include "platform/applications.h"
#include "state/app_state.h"
#include "state/notifications.h"
#include "state/prefs.h"

#include <QPointer>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;

// Editions extend these identifiers.
constexpr QStringView resolveIdentifier = u"com.blackmagic-design.DaVinciResolve";
constexpr QStringView premiereIdentifier = u"com.adobe.PremierePro";

std::optional<Target> targetOf(const QString &identifier)
{
    if (identifier.startsWith(resolveIdentifier))
        return Target::Resolve;
    if (identifier.startsWith(premiereIdentifier))
        return Target::Premiere;
    return {};
}

QString displayName(Target target)
{
    return target == Target::Premiere ? u"Premiere Pro"_s : u"DaVinci Resolve"_s;
}

} // namespace

struct Inserter::Private
{
    Private(Prefs &thePrefs, AppState &theState, Applications &theApplications,
            Notifications &theNotifications, EditorBridge &toResolve, EditorBridge &toPremiere)
        : prefs(thePrefs), state(theState), applications(theApplications), notifications(theNotifications),
          resolve(toResolve), premiere(toPremiere)
    {
    }

    void report(const InsertResult &result);

    Prefs &prefs;
    AppState &state;
    Applications &applications;
    Notifications &notifications;
    EditorBridge &resolve;
    EditorBridge &premiere;

    bool busy = false;
    bool started = false;
    bool resolveRunning = false;
    bool premiereRunning = false;
    std::optional<Target> lastEditor;

    static QCoro::Task<> carry(QPointer<Inserter> inserter, EditorBridge &bridge, Asset asset);
};

void Inserter::Private::report(const InsertResult &result)
{
    notifications.show(
        {result.message, result.ok ? Notification::Severity::Success : Notification::Severity::Warning});
}

Inserter::Inserter(Prefs &prefs, AppState &state, Applications &applications, Notifications &notifications,
                   EditorBridge &resolve, EditorBridge &premiere)
    : d(new Private(prefs, state, applications, notifications, resolve, premiere))
{
    connect(&prefs, &Prefs::insertTargetChanged, this, &Inserter::targetChanged);
    connect(&prefs, &Prefs::overlayTrackChanged, this, &Inserter::targetChanged);
    connect(&prefs, &Prefs::applyBlendOnInsertChanged, this, &Inserter::targetChanged);
    connect(&prefs, &Prefs::blendModeChanged, this, &Inserter::targetChanged);
}

Inserter::~Inserter() = default;

void Inserter::start()
{
    refreshRunning();
    if (std::exchange(d->started, true))
        return;
    connect(&d->applications, &Applications::changed, this, &Inserter::refreshRunning);
    connect(&d->applications, &Applications::activated, this, [this](const QString &identifier) {
        const std::optional<Target> editor = targetOf(identifier);
        if (!editor || editor == d->lastEditor)
            return;
        d->lastEditor = editor;
        Q_EMIT targetChanged();
    });
}

void Inserter::refreshRunning()
{
    bool resolve = false;
    bool premiere = false;
    for (const QString &identifier : d->applications.running()) {
        const std::optional<Target> editor = targetOf(identifier);
        resolve = resolve || editor == Target::Resolve;
        premiere = premiere || editor == Target::Premiere;
    }
    if (resolve == d->resolveRunning && premiere == d->premiereRunning)
        return;
    d->resolveRunning = resolve;
    d->premiereRunning = premiere;
    Q_EMIT runningChanged();
    Q_EMIT targetChanged();
}

bool Inserter::busy() const
{
    return d->busy;
}

bool Inserter::resolveRunning() const
{
    return d->resolveRunning;
}

bool Inserter::premiereRunning() const
{
    return d->premiereRunning;
}

std::optional<Target> Inserter::pick(std::optional<Target> target, Refresh refresh)
{
    if (target)
        return target;
    if (refresh == Refresh::Yes)
        refreshRunning();

    const QString chosen = d->prefs.insertTarget();
    if (chosen == u"resolve")
        return Target::Resolve;
    if (chosen == u"premiere")
        return Target::Premiere;
    if (d->resolveRunning && d->premiereRunning)
        return d->lastEditor.value_or(Target::Resolve);
    if (d->resolveRunning)
        return Target::Resolve;
    return d->premiereRunning ? std::optional(Target::Premiere) : std::nullopt;
}

QString Inserter::targetDescription(const Asset &asset)
{
    const std::optional<Target> target = pick({}, Refresh::No);
    if (!target)
        return u"Open Resolve or Premiere to insert, or drag the asset onto your timeline."_s;
    if (asset.kind == AssetKind::Lut)
        return u"LUTs are kept in your library. Drag one onto a clip or node to use it."_s;

    const QString goesTo = u"Goes to "_s + displayName(*target) + u" at the playhead on "_s;
    if (asset.kind == AssetKind::Audio)
        return goesTo + u"the first free audio track."_s;
    const bool newTop = d->prefs.overlayTrack() == u"newTop";
    QString blend;
    if (d->prefs.applyBlendOnInsert())
        blend = u", "_s + label(blendModeFromRawValue(d->prefs.blendMode())) + u" blend"_s;
    return goesTo + (newTop ? u"a new top track"_s : u"the highest free track"_s) + blend + u'.';
}

void Inserter::insert(const Asset &asset, std::optional<Target> target)
{
    if (d->busy || asset.kind == AssetKind::Lut)
        return;
    const std::optional<Target> editor = pick(target, Refresh::Yes);
    if (!editor) {
        d->report({false, u"Open DaVinci Resolve or Premiere Pro first. You can also drag any asset straight "
                          "onto your timeline."_s});
        return;
    }
    d->busy = true;
    Q_EMIT busyChanged();
    Private::carry(this, *editor == Target::Resolve ? d->resolve : d->premiere, asset);
}

QCoro::Task<> Inserter::Private::carry(QPointer<Inserter> inserter, EditorBridge &bridge, Asset asset)
{
    const InsertResult result = co_await bridge.insert(asset);
    if (!inserter)
        co_return;
    inserter->d->busy = false;
    Q_EMIT inserter->busyChanged();
    inserter->d->report(result);
    if (result.ok)
        inserter->d->prefs.noteInserted(asset.url);
}

void Inserter::insertSelected()
{
    if (const std::optional<Asset> &asset = d->state.selection())
        insert(*asset);
}

} // namespace cratewell
