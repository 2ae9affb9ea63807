#pragma once

#include "ui/controls/keyed_list_model.h"
#include "vault/vault.h"

#include <QQmlParserStatus>

namespace cratewell {

class AppState;

// Where the last imports put their files, newest first.
class RecentImportsModel : public cratewell::KeyedListModel, public QQmlParserStatus
{
    Q_OBJECT
    QML_ELEMENT
    Q_INTERFACES(QQmlParserStatus)
public:
    enum Role {
        UrlRole = Qt::UserRole + 1,
        NameRole, // without the extension
        KindRole,
        PresentRole, // whether the vault's snapshot has it
    };

    // What QML does when it has made the model. Both must outlive it.
    void follow(Vault &vault, AppState &state);

    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // Brings the asset into the inspector.
    Q_INVOKABLE void focus(int row);

private:
    void classBegin() override {}
    void componentComplete() override;
    void refresh();
    std::optional<Asset> assetAt(int row) const;

    Vault *m_vault = nullptr;
    AppState *m_state = nullptr;
};

} // namespace cratewell
