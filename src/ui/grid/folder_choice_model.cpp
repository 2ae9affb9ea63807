#include "ui/grid/folder_choice_model.h"

#include "state/app_state.h"
#include "ui/shell/ui_engine.h"

namespace cratewell {

void FolderChoiceModel::componentComplete()
{
    const UiContext &objects = uiContext(*this);
    fill(objects.vault, objects.state);
}

void FolderChoiceModel::fill(const Vault &vault, const AppState &state)
{
    QSet<AssetKind> kinds;
    const VisibleAssets &visible = state.visibleAssets();
    for (const AssetIndex index : visible.indices) {
        if (state.isSelected(index))
            kinds.insert(visible.snapshot->asset(index).kind);
    }
    beginResetModel();
    m_folders = vault.flatFolders(kinds);
    endResetModel();
}

int FolderChoiceModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_folders.size());
}

QVariant FolderChoiceModel::data(const QModelIndex &index, int role) const
{
    if (index.row() < 0 || size_t(index.row()) >= m_folders.size())
        return {};
    const FolderChoice &choice = m_folders[size_t(index.row())];
    switch (role) {
    case FolderRole:
        return QVariant::fromValue(choice.url);
    case NameRole:
    case Qt::DisplayRole:
        return choice.url.name();
    case DepthRole:
        return choice.depth;
    default:
        return {};
    }
}

QHash<int, QByteArray> FolderChoiceModel::roleNames() const
{
    return {{FolderRole, "folder"}, {NameRole, "name"}, {DepthRole, "depth"}};
}

} // namespace cratewell
