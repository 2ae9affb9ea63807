#pragma once

#include "platform/location.h"
#include "vault/category.h"

#include <QAbstractListModel>
#include <QColor>
#include <QtQml/qqml.h>

#include <vector>

class QJSEngine;
class QQmlEngine;

namespace cratewell {

class Defaults;
class Prefs;
class Vault;

// One line of the sidebar's trees.
struct FolderLine
{
    Location folder;
    VaultCategory category = VaultCategory::Overlays;
    int depth = 0; // 0 for the category's own folder
    int count = 0; // assets in it and below
    bool expandable = false;
    bool expanded = false;

    friend bool operator==(const FolderLine &, const FolderLine &) = default;
};

// The folder trees of all categories, one below the other, as far as they are expanded. A rescan or a toggle
// changes only the rows that differ.
class FolderTreeModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
public:
    enum Role {
        FolderRole = Qt::UserRole + 1, // Location
        NameRole,
        SymbolRole,
        TintRole,   // the folder's own color, or its category's
        TintedRole, // whether it has one
        DepthRole,
        CountRole,
        ExpandableRole,
        ExpandedRole,
    };

    FolderTreeModel(const Vault &vault, const Prefs &prefs, Defaults &defaults);
    static FolderTreeModel *create(QQmlEngine *engine, QJSEngine *);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // Kept for the next start as well.
    Q_INVOKABLE void setExpanded(int row, bool expanded);
    Q_INVOKABLE cratewell::Location folderAt(int row) const;
    // The row of the folder that holds this row's; -1 for a category's own.
    Q_INVOKABLE int parentOf(int row) const;
    Q_INVOKABLE bool expandableAt(int row) const;
    Q_INVOKABLE bool expandedAt(int row) const;
    // -1 for a folder that is not in view.
    Q_INVOKABLE int rowOf(const QString &folderText) const;

private:
    int rowOf(const Location &folder) const;
    bool isRow(int row) const { return row >= 0 && size_t(row) < m_lines.size(); }
    void refresh();
    void change(std::vector<FolderLine> lines);
    QColor tint(const FolderLine &line) const;

    const Vault &m_vault;
    const Prefs &m_prefs;
    Defaults &m_defaults;
    std::vector<FolderLine> m_lines;
};

} // namespace cratewell
