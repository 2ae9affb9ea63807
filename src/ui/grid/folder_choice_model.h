#pragma once

#include "state/app_state.h"
#include "vault/vault.h"

#include <QAbstractListModel>
#include <QtQml/qqml.h>

namespace cratewell {

// The folders of a list to choose from, as they were when the list was made: parents before children.
class FolderChoiceModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(cratewell::Vault *vault MEMBER m_vault NOTIFY sourceChanged REQUIRED FINAL)
    Q_PROPERTY(cratewell::AppState *state MEMBER m_state NOTIFY sourceChanged REQUIRED FINAL)
    Q_PROPERTY(Purpose purpose MEMBER m_purpose NOTIFY sourceChanged REQUIRED FINAL)
public:
    // Move: the folders that take every selected asset in view. Import: every folder, after a line without
    // one that leaves the place to the type of the file.
    enum Purpose { Move, Import };
    Q_ENUM(Purpose)
    enum Role { FolderRole = Qt::UserRole + 1, NameRole, DepthRole };

    explicit FolderChoiceModel(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // -1 for a folder that is not among them.
    Q_INVOKABLE int rowOf(const cratewell::Location &folder) const;

Q_SIGNALS:
    void sourceChanged();

private:
    void fill();

    Vault *m_vault = nullptr;
    AppState *m_state = nullptr;
    Purpose m_purpose = Move;
    std::vector<FolderChoice> m_folders;
};

// What stands for no folder in such a list.
QString sortByTypeText();

} // namespace cratewell
