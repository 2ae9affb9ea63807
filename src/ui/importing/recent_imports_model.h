#pragma once

#include "ui/controls/keyed_list_model.h"
#include "vault/vault.h"

class QJSEngine;
class QQmlEngine;

namespace cratewell {

class AppState;

// Where the last imports put their files, newest first.
class RecentImportsModel : public cratewell::KeyedListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
public:
    enum Role {
        UrlRole = Qt::UserRole + 1,
        NameRole, // without the extension
        KindRole,
        PresentRole, // whether the vault's snapshot has it
    };

    RecentImportsModel(const Vault &vault, AppState &state);
    static RecentImportsModel *create(QQmlEngine *engine, QJSEngine *);

    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // Brings the asset into the inspector.
    Q_INVOKABLE void focus(int row);

private:
    void refresh();
    std::optional<Asset> assetAt(int row) const;

    const Vault &m_vault;
    AppState &m_state;
};

} // namespace cratewell
