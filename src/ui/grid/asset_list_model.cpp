#include "ui/grid/asset_list_model.h"

#include "vault/vault_scan.h"

#include <algorithm>
#include <utility>

namespace cratewell {

namespace {

// The rows of `all` that no run of `inserted` covers.
VisibleAssets without(const VisibleAssets &all, const std::vector<RowRun> &inserted)
{
    VisibleAssets kept{all.snapshot, {}, {}};
    kept.indices.reserve(all.indices.size());
    int row = 0;
    for (const RowRun &run : inserted) {
        kept.indices.insert(kept.indices.end(), all.indices.begin() + row, all.indices.begin() + run.first);
        row = run.first + run.count;
    }
    kept.indices.insert(kept.indices.end(), all.indices.begin() + row, all.indices.end());
    return kept;
}

} // namespace

void AssetListModel::setState(AppState *state)
{
    if (state == m_state)
        return;
    if (m_state)
        m_state->disconnect(this);
    m_state = state;
    if (state) {
        connect(state, &AppState::visibleAssetsChanged, this, &AssetListModel::follow);
        connect(state, &AppState::selectedChanged, this, &AssetListModel::updateSelected);
        connect(state, &AppState::selectionChanged, this, &AssetListModel::updateFocused);
    }

    beginResetModel();
    show(state ? carriedOver(state->visibleAssets(), formerRows({}, state->visibleAssets().indices, {}))
               : Rows());
    endResetModel();
    Q_EMIT stateChanged();
    Q_EMIT countChanged();
    updateFocused();
}

void AssetListModel::setPrefs(Prefs *prefs)
{
    if (prefs == m_prefs)
        return;
    if (m_prefs)
        m_prefs->disconnect(this);
    m_prefs = prefs;
    if (prefs)
        connect(prefs, &Prefs::favoritesChanged, this, &AssetListModel::updateFavorites);
    Q_EMIT prefsChanged();
    updateFavorites();
}

int AssetListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant AssetListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Place here = place(index.row());
    const Asset &asset = here.asset();
    switch (role) {
    case UrlRole:
        return QVariant::fromValue(asset.url);
    case NameRole:
    case Qt::DisplayRole:
        return asset.url.baseName();
    case KindRole:
        return QVariant::fromValue(asset.kind);
    case KindLabelRole:
        return kindLabel(asset.kind);
    case SelectedRole:
        return bool(here.rows->selected[size_t(here.row)]);
    case FocusedRole:
        return asset.url == m_focused;
    case FavoriteRole:
        return m_favorites.contains(asset.url);
    default:
        return {};
    }
}

QHash<int, QByteArray> AssetListModel::roleNames() const
{
    return {{UrlRole, "url"},           {NameRole, "name"},
            {KindRole, "kind"},         {KindLabelRole, "kindLabel"},
            {SelectedRole, "selected"}, {FocusedRole, "focused"},
            {FavoriteRole, "favorite"}};
}

AssetListModel::Place AssetListModel::place(int row) const
{
    return row < m_headCount ? Place{&m_head, row} : Place{&m_tail, row - m_headCount + m_tailFirst};
}

const Asset *AssetListModel::assetAt(int row) const
{
    return row >= 0 && row < count() ? &place(row).asset() : nullptr;
}

Location AssetListModel::urlAt(int row) const
{
    const Asset *asset = assetAt(row);
    return asset ? asset->url : Location();
}

void AssetListModel::click(int row, int modifiers)
{
    const Asset *asset = assetAt(row);
    if (asset && m_state)
        m_state->click(Asset(*asset), Qt::KeyboardModifiers(modifiers));
}

void AssetListModel::pick(int row)
{
    const Asset *asset = assetAt(row);
    if (!asset || !m_state)
        return;
    const Asset picked = *asset;
    if (data(index(row), SelectedRole).toBool())
        m_state->setSelection(picked);
    else
        m_state->click(picked, Qt::NoModifier);
}

void AssetListModel::follow(const SnapshotDiff *diff)
{
    if (m_applying) {
        m_outdated = true;
        return;
    }
    const int countBefore = count();
    const VisibleAssets &fresh = m_state->visibleAssets();
    const FormerRows former = formerRowsOf(fresh, diff);
    const RowChanges rows = rowChanges(former);
    if (rows.isEmpty()) {
        show(carriedOver(fresh, former));
    } else {
        m_applying = true;
        Q_EMIT aboutToApply(fresh.count());
        apply(carriedOver(fresh, former), former, rows);
        m_applying = false;
        if (count() != countBefore)
            Q_EMIT countChanged();
        updateCurrentRow();
        Q_EMIT applied(rows.relayout);
    }

    if (diff) {
        std::vector<int> altered;
        for (const AssetIndex index : diff->altered) {
            if (const int row = rowOf(diff->after->asset(index).url); row >= 0)
                altered.push_back(row);
        }
        std::sort(altered.begin(), altered.end());
        notifyChanged(altered, {});
    }
    updateSelected();
    updateFocused();
    if (std::exchange(m_outdated, false)) {
        follow(nullptr);
        updateFavorites();
    }
}

FormerRows AssetListModel::formerRowsOf(const VisibleAssets &fresh, const SnapshotDiff *diff) const
{
    const VisibleAssets &shown = m_head.assets;
    if (fresh.snapshot == shown.snapshot)
        return formerRows(shown, fresh.indices, {});
    if (diff && diff->before == shown.snapshot && diff->after == fresh.snapshot)
        return formerRows(shown, fresh.indices, diff->previous);
    return formerRows(shown, fresh.indices, VaultScan::compare(shown.snapshot, fresh.snapshot).previous);
}

// Rows that stay are as selected as the views know them; the difference is reported afterwards.
AssetListModel::Rows AssetListModel::carriedOver(const VisibleAssets &fresh, const FormerRows &former) const
{
    Rows rows{fresh, std::vector<bool>(fresh.indices.size()), 0};
    if (m_head.selectedCount == 0 && m_state->selectedCount() == 0)
        return rows;
    for (int row = 0; row < fresh.count(); ++row) {
        const int old = former.at(row);
        const bool selected =
            old >= 0 ? m_head.selected[size_t(old)] : m_state->isSelected(fresh.indices[size_t(row)]);
        rows.selected[size_t(row)] = selected;
        rows.selectedCount += int(selected);
    }
    return rows;
}

void AssetListModel::apply(Rows fresh, const FormerRows &former, const RowChanges &changes)
{
    if (changes.relayout)
        relayout(std::move(fresh), former);
    else
        applyRuns(std::move(fresh), changes);
}

void AssetListModel::applyRuns(Rows fresh, const RowChanges &changes)
{
    m_tail.assets = without(fresh.assets, changes.inserts);
    m_tail.selected.assign(m_tail.assets.indices.size(), false);
    for (size_t row = 0; fresh.selectedCount > 0 && row < m_tail.selected.size(); ++row)
        m_tail.selected[row] = fresh.selected[size_t(fresh.assets.rows[m_tail.assets.indices[row]])];
    m_tailFirst = m_tail.assets.count();

    for (auto run = changes.removes.rbegin(); run != changes.removes.rend(); ++run) {
        const int end = run->first + run->count;
        beginRemoveRows({}, run->first, end - 1);
        m_tailFirst -= m_headCount - end;
        m_headCount = run->first;
        endRemoveRows();
    }

    // What is left of the head is what the tail begins with.
    m_head = std::move(fresh);
    m_headCount = 0;
    m_tailFirst = 0;
    for (const RowRun &run : changes.inserts) {
        beginInsertRows({}, run.first, run.first + run.count - 1);
        m_tailFirst += run.first - m_headCount;
        m_headCount = run.first + run.count;
        endInsertRows();
    }
    m_headCount = m_head.assets.count();
    m_tail = {};
    m_tailFirst = 0;
}

void AssetListModel::relayout(Rows fresh, const FormerRows &former)
{
    const int newCount = fresh.assets.count();
    const int common = std::min(m_headCount, newCount);
    if (common < m_headCount) {
        beginRemoveRows({}, common, m_headCount - 1);
        m_headCount = common;
        endRemoveRows();
    }

    // With this hint views bind the cards they have to the new rows and stay where they are.
    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    std::vector<int> later(size_t(common), -1);
    for (int row = 0; row < common; ++row) {
        if (const int old = former.at(row); old >= 0 && old < common)
            later[size_t(old)] = row;
    }
    m_head = std::move(fresh);
    const QModelIndexList persistent = persistentIndexList();
    for (const QModelIndex &old : persistent) {
        const int row = later[size_t(old.row())];
        changePersistentIndex(old, row < 0 ? QModelIndex() : index(row));
    }
    Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);

    if (common < newCount) {
        beginInsertRows({}, common, newCount - 1);
        m_headCount = newCount;
        endInsertRows();
    }
}

void AssetListModel::show(Rows rows)
{
    m_head = std::move(rows);
    m_headCount = m_head.assets.count();
}

void AssetListModel::updateSelected()
{
    // Flags of another snapshot are reported once its rows are shown.
    if (!m_state || m_applying || m_state->visibleAssets().snapshot != m_head.assets.snapshot)
        return;
    if (m_head.selectedCount == 0 && m_state->selectedCount() == 0)
        return;
    std::vector<int> changed;
    for (int row = 0; row < m_headCount; ++row) {
        const bool selected = m_state->isSelected(m_head.assets.indices[size_t(row)]);
        if (selected != m_head.selected[size_t(row)]) {
            m_head.selected[size_t(row)] = selected;
            m_head.selectedCount += selected ? 1 : -1;
            changed.push_back(row);
        }
    }
    notifyChanged(changed, {SelectedRole});
}

void AssetListModel::updateFocused()
{
    if (m_applying)
        return;
    const Location focused = m_state && m_state->selection() ? m_state->selection()->url : Location();
    const Location before = std::exchange(m_focused, focused);
    updateCurrentRow();
    if (before == focused)
        return;
    for (const Location &url : {before, focused}) {
        if (const int row = rowOf(url); row >= 0)
            notifyChanged({row}, {FocusedRole});
    }
}

void AssetListModel::updateCurrentRow()
{
    const int row = rowOf(m_focused);
    if (std::exchange(m_currentRow, row) != row)
        Q_EMIT currentRowChanged();
}

void AssetListModel::updateFavorites()
{
    if (m_applying) {
        m_outdated = true;
        return;
    }
    const LocationSet favorites = m_prefs ? m_prefs->favorites() : LocationSet();
    const LocationSet before = std::exchange(m_favorites, favorites);
    std::vector<int> changed;
    const auto collect = [&](const LocationSet &from, const LocationSet &other) {
        for (const Location &url : from) {
            if (const int row = other.contains(url) ? -1 : rowOf(url); row >= 0)
                changed.push_back(row);
        }
    };
    collect(before, favorites);
    collect(favorites, before);
    std::sort(changed.begin(), changed.end());
    notifyChanged(changed, {FavoriteRole});
}

void AssetListModel::notifyChanged(const std::vector<int> &rows, const QList<int> &roles)
{
    std::vector<RowRun> runs;
    for (const int row : rows)
        appendRow(runs, row);
    if (int(runs.size()) > rowRunLimit)
        runs = {{rows.front(), rows.back() - rows.front() + 1}};
    for (const RowRun &run : runs)
        Q_EMIT dataChanged(index(run.first), index(run.first + run.count - 1), roles);
}

} // namespace cratewell
