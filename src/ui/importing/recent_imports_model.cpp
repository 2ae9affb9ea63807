#include "ui/importing/recent_imports_model.h"

#include "state/app_state.h"
#include "ui/shell/ui_engine.h"

namespace cratewell {

RecentImportsModel::RecentImportsModel(const Vault &vault, AppState &state) : m_vault(vault), m_state(state)
{
    connect(&vault, &Vault::recentImportsChanged, this, &RecentImportsModel::refresh);
    connect(&vault, &Vault::rescanned, this, [this] { notifyChanged({PresentRole}); });
    refresh();
}

RecentImportsModel *RecentImportsModel::create(QQmlEngine *engine, QJSEngine *)
{
    const UiContext &context = UiEngine::contextOf(engine);
    return new RecentImportsModel(context.vault, context.state);
}

void RecentImportsModel::refresh()
{
    std::vector<QByteArray> keys;
    for (const Location &place : m_vault.recentImports())
        keys.push_back(place.bytes());
    showKeys(keys);
}

std::optional<Asset> RecentImportsModel::assetAt(int row) const
{
    const VaultSnapshot &snapshot = *m_vault.snapshot();
    const auto index = snapshot.find(Location::fromStandardized(keyAt(row)));
    return index ? std::optional(snapshot.asset(*index)) : std::nullopt;
}

QVariant RecentImportsModel::data(const QModelIndex &index, int role) const
{
    const QByteArray key = keyAt(index.row());
    if (key.isEmpty())
        return {};
    const Location place = Location::fromStandardized(key);
    switch (role) {
    case UrlRole:
        return QVariant::fromValue(place);
    case Qt::DisplayRole:
    case NameRole:
        return place.baseName();
    case KindRole:
        return QVariant::fromValue(kindOf(place).value_or(AssetKind::Video));
    case PresentRole:
        return assetAt(index.row()).has_value();
    default:
        return {};
    }
}

QHash<int, QByteArray> RecentImportsModel::roleNames() const
{
    return {{UrlRole, "url"}, {NameRole, "name"}, {KindRole, "kind"}, {PresentRole, "present"}};
}

void RecentImportsModel::focus(int row)
{
    if (const std::optional<Asset> asset = assetAt(row))
        m_state.setSelection(asset);
}

} // namespace cratewell
