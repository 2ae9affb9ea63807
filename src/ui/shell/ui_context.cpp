#include "ui/shell/ui_context.h"

#include "integrations/inserter.h"
#include "media/media.h"
#include "platform/appearance.h"
#include "state/app_state.h"
#include "state/notifications.h"
#include "state/prefs.h"
#include "ui/controls/accessible_item.h"
#include "ui/shell/singletons.h"
#include "vault/vault.h"

#include <QFontDatabase>
#include <QQmlEngine>

using namespace Qt::StringLiterals;

namespace cratewell {

namespace {

class Holder : public QObject
{
public:
    Holder(const UiContext &values, QObject *parent) : QObject(parent), objects(values) {}
    const UiContext objects;
};

constexpr auto holderName = "cratewellUiContext"_L1;

void loadFonts()
{
    static const bool loaded = [] {
        for (const auto face :
             {"Inter-Regular.otf"_L1, "Inter-Medium.otf"_L1, "Inter-SemiBold.otf"_L1, "Inter-Bold.otf"_L1,
              "Inter-ExtraBold.otf"_L1, "MaterialIcons-Regular.ttf"_L1})
            QFontDatabase::addApplicationFont(u":/cratewell/fonts/"_s + face);
        return true;
    }();
    Q_UNUSED(loaded)
}

// The program owns its objects, whatever the engine does.
template<typename T> T *fromProgram(T &object)
{
    QJSEngine::setObjectOwnership(&object, QJSEngine::CppOwnership);
    return &object;
}

} // namespace

void installUiContext(QQmlEngine &engine, const UiContext &objects)
{
    loadFonts();
    installAccessibleItems();
    auto *holder = new Holder(objects, &engine);
    holder->setObjectName(holderName);
}

const UiContext &uiContext(const QQmlEngine &engine)
{
    const QObject *holder = engine.findChild<QObject *>(holderName, Qt::FindDirectChildrenOnly);
    Q_ASSERT_X(holder, "uiContext", "installUiContext was not called for this engine");
    return static_cast<const Holder *>(holder)->objects;
}

const UiContext &uiContext(const QObject &qmlObject)
{
    return uiContext(*qmlEngine(&qmlObject));
}

Prefs *PrefsSingleton::create(QQmlEngine *engine, QJSEngine *)
{
    return fromProgram(uiContext(*engine).prefs);
}

AppState *AppStateSingleton::create(QQmlEngine *engine, QJSEngine *)
{
    return fromProgram(uiContext(*engine).state);
}

Vault *VaultSingleton::create(QQmlEngine *engine, QJSEngine *)
{
    return fromProgram(uiContext(*engine).vault);
}

Notifications *NotificationsSingleton::create(QQmlEngine *engine, QJSEngine *)
{
    return fromProgram(uiContext(*engine).notifications);
}

Inserter *InserterSingleton::create(QQmlEngine *engine, QJSEngine *)
{
    return fromProgram(uiContext(*engine).inserter);
}

Media *MediaSingleton::create(QQmlEngine *engine, QJSEngine *)
{
    return fromProgram(uiContext(*engine).media);
}

Appearance *AppearanceSingleton::create(QQmlEngine *engine, QJSEngine *)
{
    return fromProgram(uiContext(*engine).appearance);
}

} // namespace cratewell
