#include "ui/dragging/drop_controller.h"

#include "state/app_state.h"
#include "ui/dragging/drag_data.h"
#include "ui/shell/asset_actions.h"
#include "ui/shell/ui_engine.h"
#include "vault/vault.h"

#include <QCoreApplication>
#include <QPointer>
#include <QQmlEngine>
#include <QThreadPool>

namespace cratewell {

// One drag since it entered. Outlives its successor when it was dropped before it was judged.
struct DropController::Drag
{
    Location root; // that it is judged for
    bool own = false;
    std::optional<JudgedDrop> judged;
    std::function<void(const JudgedDrop &)> dropped; // waits for the judgement
};

namespace {

// So few that nobody notices the main thread looking at them.
constexpr qsizetype judgedAtOnce = 200;

std::vector<Location> itemsOf(const QString &uriList, const QString &ownData)
{
    if (auto own = ownDragItems(ownData.toLatin1()))
        return *std::move(own);
    std::vector<Location> items;
    for (const QStringView line : QStringTokenizer(uriList, u'\n')) {
        if (Location item = Location::fromUri(line.trimmed().toUtf8()); !item.isEmpty())
            items.push_back(std::move(item));
    }
    return items;
}

} // namespace

DropController::DropController(Vault &vault, const AppState &state, AssetActions &actions)
    : m_vault(vault), m_state(state), m_actions(actions), m_drag(std::make_shared<Drag>())
{
    m_drag->judged.emplace();
}

DropController *DropController::create(QQmlEngine *engine, QJSEngine *)
{
    const UiContext &context = UiEngine::contextOf(engine);
    return new DropController(context.vault, context.state, context.actions);
}

QString DropController::ownType()
{
    return QString::fromLatin1(ownDragType);
}

bool DropController::isJudging() const
{
    return !m_drag->judged;
}

void DropController::enter(const QString &uriList, const QString &ownData)
{
    const bool wasJudging = isJudging();
    m_drag = std::make_shared<Drag>();
    m_drag->root = m_vault.root();
    m_drag->own = ownDragItems(ownData.section(u'\n', 0, 0).toLatin1()).has_value();
    const auto judge = [uriList, ownData, root = m_drag->root] {
        return judgeDrop(itemsOf(uriList, ownData), root);
    };
    if (uriList.count(u'\n') <= judgedAtOnce && ownData.count(u'\n') <= judgedAtOnce)
        m_drag->judged = judge();
    if (isJudging() != wasJudging)
        Q_EMIT judgingChanged();
    if (!isJudging())
        return;
    QThreadPool::globalInstance()->start([self = QPointer(this), drag = m_drag, judge] {
        QMetaObject::invokeMethod(qApp, [self, drag, judged = judge()]() mutable {
            if (self)
                self->finish(*drag, std::move(judged));
        });
    });
}

void DropController::finish(Drag &drag, JudgedDrop judged)
{
    drag.judged = std::move(judged);
    if (&drag == m_drag.get())
        Q_EMIT judgingChanged();
    // The folders of one vault mean nothing in the next.
    if (drag.dropped && drag.root == m_vault.root())
        drag.dropped(*drag.judged);
}

void DropController::whenJudged(std::function<void(const JudgedDrop &)> drop)
{
    if (m_drag->judged)
        drop(*m_drag->judged);
    else
        m_drag->dropped = std::move(drop);
}

DropController::Effect DropController::effectOn(const Location &folder, const DropEffects &effects) const
{
    if (folder.isEmpty())
        return Nothing;
    if (effects.moveInto(folder, m_vault.root()))
        return effects.import() ? MoveAndCopy : Move;
    if (!effects.import())
        return Nothing;
    return effects.importInto(folder, m_vault.root()) ? Copy : Sort;
}

DropController::Effect DropController::effectOn(const Location &folder) const
{
    return isJudging() ? Unknown : effectOn(folder, m_drag->judged->effects);
}

DropController::Effect DropController::effectOnGrid() const
{
    if (isJudging()) // a drag of our own holds nothing that is not of the vault
        return m_drag->own ? Nothing : Unknown;
    const DropEffects &effects = m_drag->judged->effects;
    if (!effects.import())
        return Nothing;
    const auto folder = shownFolder();
    return folder && effects.importInto(*folder, m_vault.root()) ? Copy : Sort;
}

void DropController::dropOn(const Location &folder)
{
    whenJudged([this, folder](const JudgedDrop &drop) {
        if (effectOn(folder, drop.effects) == Nothing)
            return;
        m_actions.move(drop.items.inside, folder);
        if (!drop.items.outside.empty())
            m_vault.importItems(drop.items.outside, folder, ImportMode::Copy);
    });
}

void DropController::dropOnGrid()
{
    whenJudged([this, folder = shownFolder()](const JudgedDrop &drop) {
        if (drop.effects.import())
            m_vault.importItems(drop.items.outside, folder, ImportMode::Copy);
    });
}

std::optional<Location> DropController::shownFolder() const
{
    const Scope &scope = m_state.scope();
    return scope.kind() == Scope::Kind::Folder ? std::optional(scope.folder()) : std::nullopt;
}

} // namespace cratewell
