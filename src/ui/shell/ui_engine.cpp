#include "ui/shell/ui_engine.h"

#include "ui/controls/accessible_item.h"

#include <QFontDatabase>

using namespace Qt::StringLiterals;

namespace cratewell {

namespace {

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

} // namespace

UiEngine::UiEngine(const UiContext &context) : m_context(context)
{
    loadFonts();
    installAccessibleItems();
}

const UiContext &UiEngine::contextOf(const QQmlEngine *engine)
{
    const auto *own = qobject_cast<const UiEngine *>(engine);
    Q_ASSERT_X(own, "UiEngine", "another engine loads the module");
    return own->context();
}

} // namespace cratewell
