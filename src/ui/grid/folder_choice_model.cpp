#include "ui/grid/folder_choice_model.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace cratewell {

namespace {

QSet<AssetKind> selectedKinds(const AppState &state)
{
    QSet<AssetKind> kinds;
    const VisibleAssets &visible = state.visibleAssets();
    for (const AssetIndex index : visible.indices) {
        if (state.isSelected(index))
            kinds.insert(visible.snapshot->asset(index).kind);
    }
    return kinds;
}

} // namespace

FolderChoiceModel::FolderChoiceModel(QObject *parent) : QAbstractListModel(parent)
{
    connect(this, &FolderChoiceModel::sourceChanged, this, &FolderChoiceModel::fill);
}

// QML sets the required properties one after the other.
void FolderChoiceModel::fill()
{
    if (!m_vault || !m_state)
        return;
    beginResetModel();
    if (m_purpose == Move) {
        m_folders = m_vault->flatFolders(selectedKinds(*m_state));
    } else {
        m_folders = m_vault->flatFolders();
        m_folders.insert(m_folders.begin(), FolderChoice());
    }
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
        return choice.url.isEmpty() ? sortByTypeText() : choice.url.name();
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

int FolderChoiceModel::rowOf(const Location &folder) const
{
    const auto found = std::ranges::find(m_folders, folder, &FolderChoice::url);
    return found == m_folders.end() ? -1 : int(found - m_folders.begin());
}

QString sortByTypeText()
{
    return u"Sort by type automatically"_s;
}

} // namespace cratewell
