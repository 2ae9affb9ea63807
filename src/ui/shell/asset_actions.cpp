#include "ui/shell/asset_actions.h"

#include "integrations/inserter.h"
#include "platform/workspace.h"
#include "state/app_state.h"
#include "state/prefs.h"
#include "ui/shell/ui_engine.h"
#include "vault/vault.h"

#include <QPointer>
#include <QQmlEngine>
#include <algorithm>

namespace cratewell {

using namespace Qt::StringLiterals;

static_assert(int(AssetActions::Resolve) == int(Target::Resolve) &&
              int(AssetActions::Premiere) == int(Target::Premiere));

AssetActions::AssetActions(Vault &vault, Prefs &prefs, AppState &state, Inserter &inserter,
                           Workspace &workspace, FileChooser &chooser)
    : m_vault(vault), m_prefs(prefs), m_state(state), m_inserter(inserter), m_workspace(workspace),
      m_chooser(chooser)
{
    connect(&state, &AppState::selectedChanged, this, &AssetActions::changed);
    connect(&state, &AppState::visibleAssetsChanged, this, &AssetActions::changed);
    connect(this, &AssetActions::changed, this, &AssetActions::favoritesInViewChanged);
    connect(&prefs, &Prefs::favoritesChanged, this, &AssetActions::favoritesInViewChanged);
    connect(&state, &AppState::selectionChanged, this, &AssetActions::insertableChanged);
    connect(&inserter, &Inserter::busyChanged, this, &AssetActions::insertableChanged);
}

AssetActions *AssetActions::create(QQmlEngine *engine, QJSEngine *)
{
    AssetActions &actions = UiEngine::contextOf(engine).actions;
    QJSEngine::setObjectOwnership(&actions, QJSEngine::CppOwnership);
    return &actions;
}

int AssetActions::countInView() const
{
    if (m_state.selectedCount() == 0)
        return 0;
    return int(std::ranges::count_if(m_state.visibleAssets().indices,
                                     [this](AssetIndex index) { return m_state.isSelected(index); }));
}

bool AssetActions::favoritesInView() const
{
    const VisibleAssets &visible = m_state.visibleAssets();
    const LocationSet favorites = m_prefs.favorites();
    bool any = false;
    for (const AssetIndex index : visible.indices) {
        if (!m_state.isSelected(index))
            continue;
        if (!favorites.contains(visible.snapshot->asset(index).url))
            return false;
        any = true;
    }
    return any;
}

bool AssetActions::isInsertable() const
{
    const auto &asset = m_state.selection();
    return asset && asset->kind != AssetKind::Lut && !m_inserter.busy();
}

std::vector<Location> AssetActions::itemsInView() const
{
    std::vector<Location> items;
    for (const Asset &asset : m_state.selectedAssets())
        items.push_back(asset.url);
    return items;
}

std::vector<Location> AssetActions::selectedElseFocused() const
{
    const QSet<Location> selected = m_state.selected();
    std::vector<Location> items(selected.begin(), selected.end());
    if (items.empty() && m_state.selection())
        items.push_back(m_state.selection()->url);
    std::sort(items.begin(), items.end());
    return items;
}

void AssetActions::insertInto(Editor editor)
{
    if (const auto &asset = m_state.selection())
        m_inserter.insert(*asset, Target(editor));
}

void AssetActions::toggleFavorite(const Location &asset)
{
    m_prefs.toggleFavorite(asset);
}

void AssetActions::toggleFavoriteOfFocused()
{
    if (const auto &asset = m_state.selection())
        toggleFavorite(asset->url);
}

void AssetActions::toggleFavoritesInView()
{
    const bool remove = favoritesInView();
    LocationSet favorites = m_prefs.favorites();
    for (const Location &item : itemsInView()) {
        if (remove)
            favorites.remove(item);
        else
            favorites.insert(item);
    }
    m_prefs.setFavorites(favorites);
}

void AssetActions::rename(const Location &item)
{
    m_state.setRenameTarget(item);
}

void AssetActions::renameFocused()
{
    if (const auto &asset = m_state.selection())
        rename(asset->url);
}

void AssetActions::renameTo(const QString &name)
{
    if (const std::optional<Location> target = m_state.renameTarget()) {
        m_state.setRenameTarget({});
        m_vault.rename(*target, name);
    }
}

void AssetActions::createFolder(const QString &name)
{
    m_state.setShowNewFolder(false);
    const std::optional<Location> parent = m_state.newFolderParent();
    if (!parent)
        return;
    const auto done = [guard = QPointer(this), items = m_state.pendingMove(), from = m_state.scope(),
                       root = m_vault.root()](const std::optional<Location> &folder) {
        if (!guard || !folder)
            return;
        AppState &state = guard->m_state;
        if (!items.empty()) {
            guard->move(items, *folder);
            if (state.pendingMove() == items)
                state.setPendingMove({});
        } else if (state.scope() == from && guard->m_vault.root() == root) {
            state.setScope(Scope::inFolder(*folder));
        }
    };
    m_vault.createFolder(name, *parent, done);
}

void AssetActions::move(const std::vector<Location> &items, const Location &folder)
{
    if (!items.empty() && !folder.isEmpty())
        m_vault.move(items, folder);
}

void AssetActions::moveInViewTo(const Location &folder)
{
    move(itemsInView(), folder);
}

void AssetActions::moveToTrash(const Location &item)
{
    m_vault.moveToTrash({item});
}

void AssetActions::moveInViewToTrash()
{
    if (const std::vector<Location> items = itemsInView(); !items.empty())
        m_vault.moveToTrash(items);
}

void AssetActions::moveSelectedToTrash()
{
    if (const std::vector<Location> items = selectedElseFocused(); !items.empty())
        m_vault.moveToTrash(items);
}

void AssetActions::undoTrash(const std::vector<TrashItem> &items)
{
    // Some may have been deleted for good since.
    const std::vector<TrashItem> &present = m_vault.trashItems();
    const QSet<TrashItem> kept(present.begin(), present.end());
    std::vector<TrashItem> wanted;
    std::ranges::copy_if(items, std::back_inserter(wanted),
                         [&](const TrashItem &item) { return kept.contains(item); });
    if (!wanted.empty())
        m_vault.restore(wanted);
}

void AssetActions::reveal(const Location &item)
{
    m_workspace.reveal({item});
}

void AssetActions::revealSelected()
{
    if (const std::vector<Location> items = selectedElseFocused(); !items.empty())
        m_workspace.reveal({items.begin(), items.end()});
}

void AssetActions::openFolder(const Location &folder)
{
    m_workspace.open(folder);
}

std::optional<Location> AssetActions::folderInView() const
{
    const Scope &scope = m_state.scope();
    return scope.kind() == Scope::Kind::Folder ? std::optional(scope.folder()) : std::nullopt;
}

void AssetActions::importFiles()
{
    chooseImports(ChooseRequest::What::Files, folderInView());
}

void AssetActions::importFolder()
{
    chooseImports(ChooseRequest::What::Folders, folderInView());
}

void AssetActions::chooseImports(ChooseRequest::What what, const std::optional<Location> &into)
{
    const ChooseRequest request{what, u"Choose overlays, LUTs or sound effects to add to your vault."_s,
                                u"Import"_s, true};
    m_chooser.choose(request, [guard = QPointer(this), into, root = m_vault.root()](const auto &chosen) {
        // A folder that was meant in one vault is none in the next.
        if (guard && !chosen.isEmpty() && guard->m_vault.root() == root)
            guard->importItems({chosen.begin(), chosen.end()}, into);
    });
}

void AssetActions::importItems(const std::vector<Location> &items, const std::optional<Location> &into)
{
    m_vault.importItems(items, into, m_prefs.importMove() ? ImportMode::Move : ImportMode::Copy);
}

} // namespace cratewell
