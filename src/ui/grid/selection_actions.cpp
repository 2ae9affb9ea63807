#include "ui/grid/selection_actions.h"

#include "integrations/inserter.h"
#include "state/app_state.h"
#include "state/prefs.h"
#include "ui/shell/ui_engine.h"
#include "vault/vault.h"

#include <algorithm>

namespace cratewell {

static_assert(int(SelectionActions::Resolve) == int(Target::Resolve) &&
              int(SelectionActions::Premiere) == int(Target::Premiere));

SelectionActions::SelectionActions(const UiContext &context, QObject *parent)
    : QObject(parent), m_context(context)
{
    connect(&context.state, &AppState::selectedChanged, this, &SelectionActions::changed);
    connect(&context.state, &AppState::visibleAssetsChanged, this, &SelectionActions::changed);
    connect(this, &SelectionActions::changed, this, &SelectionActions::favoriteChanged);
    connect(&context.prefs, &Prefs::favoritesChanged, this, &SelectionActions::favoriteChanged);
    connect(&context.state, &AppState::selectionChanged, this, &SelectionActions::insertableChanged);
    connect(&context.inserter, &Inserter::busyChanged, this, &SelectionActions::insertableChanged);
}

SelectionActions *SelectionActions::create(QQmlEngine *engine, QJSEngine *)
{
    return new SelectionActions(UiEngine::contextOf(engine));
}

int SelectionActions::count() const
{
    const AppState &state = m_context.state;
    if (state.selectedCount() == 0)
        return 0;
    return int(std::ranges::count_if(state.visibleAssets().indices,
                                     [&state](AssetIndex index) { return state.isSelected(index); }));
}

std::vector<Location> SelectionActions::items() const
{
    std::vector<Location> items;
    for (const Asset &asset : m_context.state.selectedAssets())
        items.push_back(asset.url);
    return items;
}

bool SelectionActions::isFavorite() const
{
    const AppState &state = m_context.state;
    const VisibleAssets &visible = state.visibleAssets();
    const LocationSet favorites = m_context.prefs.favorites();
    bool any = false;
    for (const AssetIndex index : visible.indices) {
        if (!state.isSelected(index))
            continue;
        if (!favorites.contains(visible.snapshot->asset(index).url))
            return false;
        any = true;
    }
    return any;
}

bool SelectionActions::isInsertable() const
{
    const auto &asset = m_context.state.selection();
    return asset && asset->kind != AssetKind::Lut && !m_context.inserter.busy();
}

void SelectionActions::insertInto(Editor editor)
{
    if (const auto &asset = m_context.state.selection())
        m_context.inserter.insert(*asset, Target(editor));
}

void SelectionActions::toggleFavorite()
{
    const bool remove = isFavorite();
    LocationSet favorites = m_context.prefs.favorites();
    for (const Location &item : items()) {
        if (remove)
            favorites.remove(item);
        else
            favorites.insert(item);
    }
    m_context.prefs.setFavorites(favorites);
}

void SelectionActions::moveTo(const Location &folder)
{
    if (const std::vector<Location> all = items(); !all.empty() && !folder.isEmpty())
        m_context.vault.move(all, folder);
}

void SelectionActions::moveToTrash()
{
    if (const std::vector<Location> all = items(); !all.empty())
        m_context.vault.moveToTrash(all);
}

void SelectionActions::rename()
{
    if (const auto &asset = m_context.state.selection())
        m_context.state.setRenameTarget(asset->url);
}

void SelectionActions::clear()
{
    m_context.state.setSelected({});
}

} // namespace cratewell
