#pragma once

#include "ui/controls/keyed_list_model.h"
#include "vault/vault.h"

#include <QHash>
#include <QSet>
#include <QTimer>

namespace cratewell {

// "1 day left", "Deletes today".
QString timeLeftText(int daysLeft);

// What lies in the trash, newest first, and which of it the user has picked since the model was made.
class TrashModel : public cratewell::KeyedListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(cratewell::Vault *vault READ vault WRITE setVault NOTIFY vaultChanged REQUIRED FINAL)
    Q_PROPERTY(int retentionDays READ retentionDays CONSTANT FINAL)
    Q_PROPERTY(int pickedCount READ pickedCount NOTIFY pickedCountChanged FINAL)
public:
    enum Role {
        NameRole = Qt::UserRole + 1,
        SymbolRole,
        OriginRole, // the folder that held it, as a phrase
        SizeRole,
        TimeLeftRole,
        UrgentRole, // whether the time left is short
        PickedRole,
    };

    using KeyedListModel::KeyedListModel;

    // Set once, before anything else; outlives the model.
    Vault *vault() const { return m_vault; }
    void setVault(Vault *vault);

    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;
    static int retentionDays() { return trashRetentionDays; }
    int pickedCount() const { return int(m_picked.size()); }

    Q_INVOKABLE void togglePick(int row);
    Q_INVOKABLE void clearPicks();
    Q_INVOKABLE void restore(int row);
    Q_INVOKABLE void deleteNow(int row);
    Q_INVOKABLE void restorePicked();
    Q_INVOKABLE void deletePicked();
    Q_INVOKABLE void empty();

Q_SIGNALS:
    void vaultChanged();
    void pickedCountChanged();

private:
    void refresh();
    void setPicked(const QSet<QByteArray> &picked);
    std::vector<TrashItem> itemAt(int row) const;
    std::vector<TrashItem> pickedItems() const;

    Vault *m_vault = nullptr;
    QHash<QByteArray, TrashItem> m_items;
    QSet<QByteArray> m_picked;
    QTimer m_clock; // days pass while the page is open
};

} // namespace cratewell
