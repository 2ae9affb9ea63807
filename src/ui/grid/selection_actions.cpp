#include "ui/grid/selection_actions.h"

#include "integrations/inserter.h"
#include "state/app_state.h"
#include "state/prefs.h"
#include "vault/vault.h"

#include <QQmlEngine>

#include <algorithm>

namespace cratewell {

static_assert(int(SelectionActions::Resolve) == int(Target::Resolve) &&
              int(SelectionActions::Premiere) == int(Target::Premiere));

SelectionActions::SelectionActions(const UiObjects &objects, QObject *parent)
    : QObject(parent), m_objects(objects)
{
    connect(&objects.state, &AppState::selectedChanged, this, &SelectionActions::changed);
    connect(&objects.state, &AppState::visibleAssetsChanged, this, &SelectionActions::changed);
    connect(this, &SelectionActions::changed, this, &SelectionActions::favoriteChanged);
    connect(&objects.prefs, &Prefs::favoritesChanged, this, &SelectionActions::favoriteChanged);
    connect(&objects.state, &AppState::selectionChanged, this, &SelectionActions::insertableChanged);
    connect(&objects.inserter, &Inserter::busyChanged, this, &SelectionActions::insertableChanged);
}

SelectionActions *SelectionActions::create(QQmlEngine *engine, QJSEngine *)
{
    return new SelectionActions(uiObjects(*engine));
}

int SelectionActions::count() const
{
    const AppState &state = m_objects.state;
    if (state.selectedCount() == 0)
        return 0;
    return int(std::ranges::count_if(state.visibleAssets().indices,
                                     [&state](AssetIndex index) { return state.isSelected(index); }));
}

std::vector<Location> SelectionActions::items() const
{
    std::vector<Location> items;
    for (const Asset &asset : m_objects.state.selectedAssets())
        items.push_back(asset.url);
    return items;
}

bool SelectionActions::isFavorite() const
{
    const AppState &state = m_objects.state;
    const VisibleAssets &visible = state.visibleAssets();
    const LocationSet favorites = m_objects.prefs.favorites();
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
    const auto &asset = m_objects.state.selection();
    return asset && asset->kind != AssetKind::Lut && !m_objects.inserter.busy();
}

void SelectionActions::insertInto(Editor editor)
{
    if (const auto &asset = m_objects.state.selection())
        m_objects.inserter.insert(*asset, Target(editor));
}

void SelectionActions::toggleFavorite()
{
    const bool remove = isFavorite();
    LocationSet favorites = m_objects.prefs.favorites();
    for (const Location &item : items()) {
        if (remove)
            favorites.remove(item);
        else
            favorites.insert(item);
    }
    m_objects.prefs.setFavorites(favorites);
}

void SelectionActions::moveTo(const Location &folder)
{
    if (const std::vector<Location> all = items(); !all.empty() && !folder.isEmpty())
        m_objects.vault.move(all, folder);
}

void SelectionActions::moveToTrash()
{
    if (const std::vector<Location> all = items(); !all.empty())
        m_objects.vault.moveToTrash(all);
}

void SelectionActions::rename()
{
    if (const auto &asset = m_objects.state.selection())
        m_objects.state.setRenameTarget(asset->url);
}

void SelectionActions::clear()
{
    m_objects.state.setSelected({});
}

} // namespace cratewell
