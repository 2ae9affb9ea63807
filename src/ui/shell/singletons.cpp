#include "ui/shell/singletons.h"

#include "ui/shell/ui_engine.h"

namespace cratewell {

namespace {

// The program owns its objects, whatever the engine does.
template<typename T> T *fromProgram(T &object)
{
    QJSEngine::setObjectOwnership(&object, QJSEngine::CppOwnership);
    return &object;
}

} // namespace

Prefs *PrefsSingleton::create(QQmlEngine *engine, QJSEngine *)
{
    return fromProgram(UiEngine::contextOf(engine).prefs);
}

AppState *AppStateSingleton::create(QQmlEngine *engine, QJSEngine *)
{
    return fromProgram(UiEngine::contextOf(engine).state);
}

Vault *VaultSingleton::create(QQmlEngine *engine, QJSEngine *)
{
    return fromProgram(UiEngine::contextOf(engine).vault);
}

Notifications *NotificationsSingleton::create(QQmlEngine *engine, QJSEngine *)
{
    return fromProgram(UiEngine::contextOf(engine).notifications);
}

Inserter *InserterSingleton::create(QQmlEngine *engine, QJSEngine *)
{
    return fromProgram(UiEngine::contextOf(engine).inserter);
}

Media *MediaSingleton::create(QQmlEngine *engine, QJSEngine *)
{
    return fromProgram(UiEngine::contextOf(engine).media);
}

Appearance *AppearanceSingleton::create(QQmlEngine *engine, QJSEngine *)
{
    return fromProgram(UiEngine::contextOf(engine).appearance);
}

} // namespace cratewell
