#pragma once

#include "vault/vault.h"

#include <QAbstractListModel>
#include <QQmlParserStatus>
#include <QtQml/qqml.h>

namespace cratewell {

class AppState;

// The folders that the selected assets can be moved to, as they were when the list was made.
class FolderChoiceModel : public QAbstractListModel, public QQmlParserStatus
{
    Q_OBJECT
    QML_ELEMENT
    Q_INTERFACES(QQmlParserStatus)
public:
    enum Role { FolderRole = Qt::UserRole + 1, NameRole, DepthRole };

    using QAbstractListModel::QAbstractListModel;

    // What QML does when it has made the model.
    void fill(const Vault &vault, const AppState &state);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    void classBegin() override {}
    void componentComplete() override;

    std::vector<FolderChoice> m_folders;
};

} // namespace cratewell
