#include "ui/dragging/drop_controller.h"

#include "state/app_state.h"
#include "ui/dragging/drag_data.h"
#include "ui/shell/ui_engine.h"
#include "vault/vault.h"

namespace cratewell {

namespace {

// Enough to say what a drop will do while the pointer moves.
constexpr size_t weighedItems = 200;

std::vector<Location> itemsOf(const QList<QUrl> &urls, const QString &ownData)
{
    if (auto own = ownDragItems(ownData.toLatin1()))
        return *std::move(own);
    std::vector<Location> items;
    items.reserve(size_t(urls.size()));
    for (const QUrl &url : urls) {
        if (const Location item = Location::fromUrl(url); !item.isEmpty())
            items.push_back(item);
    }
    return items;
}

} // namespace

DropController::DropController(const UiContext &context, QObject *parent)
    : QObject(parent), m_context(context)
{
}

DropController *DropController::create(QQmlEngine *engine, QJSEngine *)
{
    return new DropController(UiEngine::contextOf(engine));
}

QString DropController::ownType()
{
    return QString::fromLatin1(ownDragType);
}

void DropController::weigh(const QList<QUrl> &urls, const QString &ownData)
{
    m_weighed = splitDropped(itemsOf(urls, ownData), m_context.vault.root(), weighedItems);
    m_imports = importsAny(m_weighed.outside);
}

DropController::Effect DropController::effectOn(const Location &folder) const
{
    if (folder.isEmpty())
        return Nothing;
    const bool moves = movesAny(m_weighed.inside, folder, m_context.vault.root());
    if (moves)
        return m_imports ? MoveAndCopy : Move;
    return m_imports ? importInto(folder) : Nothing;
}

DropController::Effect DropController::effectOnGrid() const
{
    const auto folder = shownFolder();
    if (!m_imports)
        return Nothing;
    return folder ? importInto(*folder) : Sort;
}

DropController::Effect DropController::importInto(const Location &folder) const
{
    return landsIn(m_weighed.outside, folder, m_context.vault.root()) ? Copy : Sort;
}

void DropController::dropOn(const Location &folder, const QList<QUrl> &urls, const QString &ownData)
{
    const DroppedItems dropped = splitDropped(itemsOf(urls, ownData), m_context.vault.root());
    if (!dropped.inside.empty())
        m_context.vault.move(dropped.inside, folder);
    if (!dropped.outside.empty())
        m_context.vault.importItems(dropped.outside, folder, ImportMode::Copy);
}

void DropController::dropOnGrid(const QList<QUrl> &urls, const QString &ownData)
{
    const DroppedItems dropped = splitDropped(itemsOf(urls, ownData), m_context.vault.root());
    if (!dropped.outside.empty())
        m_context.vault.importItems(dropped.outside, shownFolder(), ImportMode::Copy);
}

std::optional<Location> DropController::shownFolder() const
{
    const Scope &scope = m_context.state.scope();
    return scope.kind() == Scope::Kind::Folder ? std::optional(scope.folder()) : std::nullopt;
}

} // namespace cratewell
