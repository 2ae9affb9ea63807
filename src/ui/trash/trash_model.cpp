#include "ui/trash/trash_model.h"

#include "ui/controls/formats.h"
#include "ui/thumbnail/placeholder.h"
#include "vault/asset.h"

#include <chrono>

using namespace Qt::StringLiterals;

namespace cratewell {

namespace {

constexpr int urgentDays = 3;

QString symbolOf(const TrashItem &item)
{
    if (item.isFolder)
        return u"folder"_s;
    const auto kind = kindOf(bytesFromText(item.name));
    return kind ? kindIcon(*kind) : u"insert_drive_file"_s;
}

} // namespace

QString timeLeftText(int daysLeft)
{
    if (daysLeft == 0)
        return u"Deletes today"_s;
    return daysLeft == 1 ? u"1 day left"_s : u"%1 days left"_s.arg(daysLeft);
}

void TrashModel::setVault(Vault *vault)
{
    if (vault == m_vault || !vault)
        return;
    m_vault = vault;
    connect(vault, &Vault::trashItemsChanged, this, &TrashModel::refresh);
    connect(&m_clock, &QTimer::timeout, this, [this] { notifyChanged({TimeLeftRole, UrgentRole}); });
    m_clock.start(std::chrono::minutes(10));
    refresh();
    Q_EMIT vaultChanged();
}

void TrashModel::refresh()
{
    QHash<QByteArray, TrashItem> fresh;
    std::vector<QByteArray> keys;
    for (const TrashItem &item : m_vault->trashItems()) {
        keys.push_back(item.id.toUtf8());
        fresh.insert(keys.back(), item);
    }
    // While rows change, views may still ask for those that go.
    m_items.insert(fresh);
    showKeys(keys);
    m_items = std::move(fresh);

    QSet<QByteArray> picked = m_picked;
    picked.removeIf([this](const QByteArray &key) { return !m_items.contains(key); });
    setPicked(picked);
}

QVariant TrashModel::data(const QModelIndex &index, int role) const
{
    const auto found = m_items.constFind(keyAt(index.row()));
    if (found == m_items.constEnd())
        return {};
    const TrashItem &item = *found;
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return item.name;
    case SymbolRole:
        return symbolOf(item);
    case OriginRole:
        return u"From "_s + Location::fromText(item.original).parent().name();
    case SizeRole:
        return byteText(item.size);
    case TimeLeftRole:
        return timeLeftText(item.daysLeft(secondsNow()));
    case UrgentRole:
        return item.daysLeft(secondsNow()) <= urgentDays;
    case PickedRole:
        return m_picked.contains(found.key());
    default:
        return {};
    }
}

QHash<int, QByteArray> TrashModel::roleNames() const
{
    return {{NameRole, "name"},         {SymbolRole, "symbol"}, {OriginRole, "origin"}, {SizeRole, "size"},
            {TimeLeftRole, "timeLeft"}, {UrgentRole, "urgent"}, {PickedRole, "picked"}};
}

void TrashModel::setPicked(const QSet<QByteArray> &picked)
{
    if (picked == m_picked)
        return;
    const bool counts = picked.size() != m_picked.size();
    m_picked = picked;
    notifyChanged({PickedRole});
    if (counts)
        Q_EMIT pickedCountChanged();
}

void TrashModel::togglePick(int row)
{
    const QByteArray key = keyAt(row);
    QSet<QByteArray> picked = m_picked;
    if (!picked.remove(key) && m_items.contains(key))
        picked.insert(key);
    setPicked(picked);
}

void TrashModel::clearPicks()
{
    setPicked({});
}

std::vector<TrashItem> TrashModel::itemAt(int row) const
{
    const auto found = m_items.constFind(keyAt(row));
    return found == m_items.constEnd() ? std::vector<TrashItem>() : std::vector<TrashItem>{*found};
}

std::vector<TrashItem> TrashModel::pickedItems() const
{
    std::vector<TrashItem> items;
    for (const QByteArray &key : keys()) {
        if (m_picked.contains(key))
            items.push_back(m_items.value(key));
    }
    return items;
}

void TrashModel::restore(int row)
{
    if (const auto items = itemAt(row); !items.empty())
        m_vault->restore(items);
}

void TrashModel::deleteNow(int row)
{
    if (const auto items = itemAt(row); !items.empty())
        m_vault->deleteForever(items);
}

void TrashModel::restorePicked()
{
    if (const auto items = pickedItems(); !items.empty())
        m_vault->restore(items);
}

void TrashModel::deletePicked()
{
    if (const auto items = pickedItems(); !items.empty())
        m_vault->deleteForever(items);
}

void TrashModel::empty()
{
    if (m_vault)
        m_vault->deleteForever(m_vault->trashItems());
}

} // namespace cratewell
