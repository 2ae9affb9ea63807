#include "ui/controls/keyed_list_model.h"

#include "ui/grid/row_changes.h"

#include <QHash>
#include <QSet>

namespace cratewell {

int KeyedListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QByteArray KeyedListModel::keyAt(int row) const
{
    return row >= 0 && row < count() ? m_keys[size_t(row)] : QByteArray();
}

void KeyedListModel::showKeys(const std::vector<QByteArray> &keys)
{
    QHash<QByteArray, int> oldRows;
    for (int row = 0; row < count(); ++row)
        oldRows.insert(m_keys[size_t(row)], row);

    std::vector<QByteArray> fresh;
    FormerRows former;
    QSet<QByteArray> seen;
    for (const QByteArray &key : keys) {
        if (seen.contains(key))
            continue;
        seen.insert(key);
        fresh.push_back(key);
        former.between.push_back(oldRows.value(key, -1));
    }
    former.oldCount = count();
    former.newCount = int(fresh.size());

    const int countBefore = count();
    const RowChanges changes = rowChanges(former);
    if (changes.relayout) {
        beginResetModel();
        m_keys = fresh;
        endResetModel();
    }
    for (auto run = changes.removes.rbegin(); run != changes.removes.rend(); ++run) {
        beginRemoveRows({}, run->first, run->first + run->count - 1);
        const auto first = m_keys.begin() + run->first;
        m_keys.erase(first, first + run->count);
        endRemoveRows();
    }
    for (const RowRun &run : changes.inserts) {
        beginInsertRows({}, run.first, run.first + run.count - 1);
        const auto first = fresh.begin() + run.first;
        m_keys.insert(m_keys.begin() + run.first, first, first + run.count);
        endInsertRows();
    }
    if (count() != countBefore)
        Q_EMIT countChanged();
}

void KeyedListModel::notifyChanged(const QList<int> &roles)
{
    if (count() > 0)
        Q_EMIT dataChanged(index(0), index(count() - 1), roles);
}

} // namespace cratewell
