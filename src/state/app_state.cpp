#include "state/app_state.h"

#include "state/internal/asset_selection.h"
#include "state/prefs.h"
#include "vault/category.h"
#include "vault/vault.h"

#include <algorithm>

namespace cratewell {

struct AppState::Private
{
    Private(const Vault &vault, Prefs &thePrefs)
        : prefs(thePrefs), snapshot(vault.snapshot()), selected(snapshot)
    {
        refresh();
    }

    // Lists the visible assets anew; true when they differ from those before.
    bool refresh();
    void setSearch(const QString &text);
    void select(const Asset &asset);
    void selectRows(int first, int last);
    // The row of an asset equal to the focused one, or -1.
    int focusedRow() const;
    // The focused asset as the snapshot has it now, if it still has it.
    std::optional<Asset> repairedSelection() const;

    Prefs &prefs;
    std::shared_ptr<const VaultSnapshot> snapshot;

    Scope scope;
    std::optional<Asset> selection;
    AssetSelection selected;
    std::vector<Location> pendingMove;
    std::optional<Location> anchor;
    QString search;
    std::vector<bool> matching; // assets that match `search`; empty when nothing is searched
    AssetOrder sort = AssetOrder::Added;
    std::optional<Location> newFolderParent;
    bool showNewFolder = false;
    std::optional<Location> renameTarget;
    bool showInspector = true;
    int playToggle = 0;

    VisibleAssets visible;
};

bool AppState::Private::refresh()
{
    VisibleAssets fresh = listVisible(snapshot, scope, sort, matching, prefs);
    const bool differs = fresh.snapshot != visible.snapshot || fresh.indices != visible.indices;
    visible = std::move(fresh);
    return differs;
}

void AppState::Private::setSearch(const QString &text)
{
    search = text;
    matching = text.isEmpty() ? std::vector<bool>() : snapshot->matching(text.toLower());
}

void AppState::Private::select(const Asset &asset)
{
    selected.clear();
    selected.insert(asset.url);
    anchor = asset.url;
}

void AppState::Private::selectRows(int first, int last)
{
    selected.clear();
    for (int row = first; row <= last; ++row)
        selected.insert(visible.indices[size_t(row)]);
}

int AppState::Private::focusedRow() const
{
    const int row = selection ? visible.row(selection->url) : -1;
    return row >= 0 && visible.at(row) == *selection ? row : -1;
}

std::optional<Asset> AppState::Private::repairedSelection() const
{
    const auto index = selection ? snapshot->find(selection->url) : std::nullopt;
    return index ? std::optional(snapshot->asset(*index)) : std::nullopt;
}

AppState::AppState(const Vault &vault, Prefs &prefs) : d(std::make_unique<Private>(vault, prefs))
{
    connect(&vault, &Vault::rescanned, this, &AppState::follow);
    connect(&vault, &Vault::itemRenamed, this, &AppState::followRename);
    connect(&vault, &Vault::itemsMoved, this, [this] { setSelected({}); });
    connect(&vault, &Vault::itemsTrashed, this, &AppState::followTrash);
    connect(&vault, &Vault::opened, this, [this] {
        setSelected({});
        setScope(Scope::all());
    });
    connect(&prefs, &Prefs::favoritesChanged, this, &AppState::refresh);
    connect(&prefs, &Prefs::recentChanged, this, &AppState::refresh);
}

AppState::~AppState() = default;

void AppState::refresh()
{
    if (d->refresh())
        Q_EMIT visibleAssetsChanged(nullptr);
}

// Everything is brought up to date before anything is reported, and the rows come first: whoever hears of the
// selection may already ask for its row.
void AppState::follow(const SnapshotDiff &diff)
{
    d->snapshot = diff.after;
    d->selected.follow(diff);
    d->setSearch(d->search);
    d->refresh();
    const std::optional<Asset> before = std::exchange(d->selection, d->repairedSelection());

    Q_EMIT visibleAssetsChanged(&diff);
    if (d->selection != before)
        Q_EMIT selectionChanged();
}

// Only the folder in view itself is followed to its new name.
void AppState::followRename(const Location &from, const Location &to)
{
    d->prefs.followRename(from, to);
    if (d->scope == Scope::inFolder(from))
        setScope(Scope::inFolder(to));
}

void AppState::followTrash(const std::vector<TrashItem> &items)
{
    QSet<Location> gone;
    gone.reserve(qsizetype(items.size()));
    for (const TrashItem &item : items)
        gone.insert(Location::fromText(item.original));

    const Location folder = d->scope.folder();
    const auto holdsScope = [&](const Location &place) { return folder == place || folder.isInside(place); };
    if (d->scope.kind() == Scope::Kind::Folder && std::any_of(gone.begin(), gone.end(), holdsScope))
        setScope(Scope::all());
    setSelected(selected().subtract(gone));
    if (d->selection && gone.contains(d->selection->url))
        setSelection({});
}

const Scope &AppState::scope() const
{
    return d->scope;
}

void AppState::setScope(const Scope &scope)
{
    if (scope == d->scope)
        return;
    d->scope = scope;
    d->anchor.reset();
    const bool hadSelected = d->selected.count() > 0;
    d->selected.clear();
    const bool differs = d->refresh();

    Q_EMIT scopeChanged();
    if (hadSelected)
        Q_EMIT selectedChanged();
    if (differs)
        Q_EMIT visibleAssetsChanged(nullptr);
}

QString AppState::scopeTitle() const
{
    return d->scope.title();
}

const std::optional<Asset> &AppState::selection() const
{
    return d->selection;
}

// Ends a change of `selected`.
void AppState::focus(const std::optional<Asset> &asset)
{
    const std::optional<Asset> before = std::exchange(d->selection, asset);
    Q_EMIT selectedChanged();
    if (asset != before)
        Q_EMIT selectionChanged();
}

void AppState::setSelection(const std::optional<Asset> &asset)
{
    if (asset == d->selection)
        return;
    d->selection = asset;
    Q_EMIT selectionChanged();
}

bool AppState::hasSelection() const
{
    return d->selection.has_value();
}

QSet<Location> AppState::selected() const
{
    return d->selected.places();
}

void AppState::setSelected(const QSet<Location> &selected)
{
    if (d->selected.holdsExactly(selected))
        return;
    d->selected.clear();
    for (const Location &place : selected)
        d->selected.insert(place);
    Q_EMIT selectedChanged();
}

int AppState::selectedCount() const
{
    return d->selected.count();
}

bool AppState::isSelected(AssetIndex index) const
{
    return d->selected.contains(index);
}

QString AppState::search() const
{
    return d->search;
}

void AppState::setSearch(const QString &search)
{
    if (search == d->search)
        return;
    d->setSearch(search);
    const bool differs = d->refresh();

    Q_EMIT searchChanged();
    if (differs)
        Q_EMIT visibleAssetsChanged(nullptr);
}

AssetOrder AppState::sort() const
{
    return d->sort;
}

void AppState::setSort(AssetOrder sort)
{
    if (sort == d->sort)
        return;
    d->sort = sort;
    const bool differs = d->refresh();

    Q_EMIT sortChanged();
    if (differs)
        Q_EMIT visibleAssetsChanged(nullptr);
}

bool AppState::showInspector() const
{
    return d->showInspector;
}

void AppState::setShowInspector(bool show)
{
    if (show == d->showInspector)
        return;
    d->showInspector = show;
    Q_EMIT showInspectorChanged();
}

bool AppState::showNewFolder() const
{
    return d->showNewFolder;
}

void AppState::setShowNewFolder(bool show)
{
    if (show == d->showNewFolder)
        return;
    d->showNewFolder = show;
    Q_EMIT showNewFolderChanged();
}

const std::optional<Location> &AppState::newFolderParent() const
{
    return d->newFolderParent;
}

const std::vector<Location> &AppState::pendingMove() const
{
    return d->pendingMove;
}

void AppState::setPendingMove(const std::vector<Location> &items)
{
    d->pendingMove = items;
}

const std::optional<Location> &AppState::renameTarget() const
{
    return d->renameTarget;
}

void AppState::setRenameTarget(const std::optional<Location> &target)
{
    if (target == d->renameTarget)
        return;
    d->renameTarget = target;
    Q_EMIT renameTargetChanged();
}

int AppState::playToggle() const
{
    return d->playToggle;
}

void AppState::togglePlay()
{
    ++d->playToggle;
    Q_EMIT playToggleChanged();
}

const VisibleAssets &AppState::visibleAssets() const
{
    return d->visible;
}

int AppState::visibleCount() const
{
    return d->visible.count();
}

std::vector<Asset> AppState::selectedAssets() const
{
    std::vector<Asset> assets;
    assets.reserve(size_t(std::min(d->selected.count(), d->visible.count())));
    for (const AssetIndex index : d->visible.indices) {
        if (d->selected.contains(index))
            assets.push_back(d->snapshot->asset(index));
    }
    return assets;
}

void AppState::click(const Asset &asset, Qt::KeyboardModifiers modifiers)
{
    const int anchorRow = d->anchor ? d->visible.row(*d->anchor) : -1;
    const int row = d->visible.row(asset.url);
    if (modifiers & Qt::ControlModifier) {
        d->selected.toggle(asset.url);
        d->anchor = asset.url;
    } else if ((modifiers & Qt::ShiftModifier) && anchorRow >= 0 && row >= 0) {
        d->selectRows(std::min(anchorRow, row), std::max(anchorRow, row));
    } else {
        d->select(asset);
    }
    Q_EMIT selectedChanged();
    setSelection(asset);
}

void AppState::moveBy(int delta)
{
    const int count = d->visible.count();
    if (count == 0)
        return;
    const qint64 row = qint64(d->focusedRow()) + delta;
    const Asset target = d->visible.at(int(std::clamp<qint64>(row, 0, count - 1)));
    d->select(target);
    Q_EMIT selectedChanged();
    setSelection(target);
}

void AppState::selectAll()
{
    const int count = d->visible.count();
    d->selectRows(0, count - 1);
    const bool keepsFocus = count == 0 || d->focusedRow() >= 0;
    focus(keepsFocus ? d->selection : d->visible.at(0));
}

void AppState::requestNewFolder(const std::optional<Location> &parent)
{
    d->pendingMove.clear();
    if (parent)
        d->newFolderParent = parent;
    else if (d->scope.kind() == Scope::Kind::Folder)
        d->newFolderParent = d->scope.folder();
    else
        d->newFolderParent =
            categoryFolder(Location::fromText(d->prefs.vaultPath()), VaultCategory::Overlays);
    setShowNewFolder(true);
}

void AppState::newFolderFromSelection()
{
    const std::vector<Asset> assets = selectedAssets();
    if (assets.empty())
        return;
    d->pendingMove.clear();
    for (const Asset &asset : assets)
        d->pendingMove.push_back(asset.url);
    d->newFolderParent = assets.front().url.parent();
    setShowNewFolder(true);
}

} // namespace cratewell
