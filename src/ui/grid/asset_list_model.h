#pragma once

#include "state/app_state.h"
#include "state/prefs.h"
#include "ui/grid/row_changes.h"

#include <QAbstractListModel>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

namespace cratewell {

// The visible assets as rows. Follows the disk, the search and the sort with as few row changes as there are,
// and past rowRunLimit runs of them with one relayout in place: rows then keep no identity for a view, only
// urls do. Main thread.
class AssetListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(cratewell::AppState *state READ state WRITE setState NOTIFY stateChanged REQUIRED FINAL)
    Q_PROPERTY(cratewell::Prefs *prefs READ prefs WRITE setPrefs NOTIFY prefsChanged REQUIRED FINAL)
    Q_PROPERTY(int count READ count NOTIFY countChanged FINAL)
    // The row of the focused asset, or -1.
    Q_PROPERTY(int currentRow READ currentRow NOTIFY currentRowChanged FINAL)
public:
    enum Role {
        UrlRole = Qt::UserRole,
        NameRole, // without the extension
        KindRole,
        KindLabelRole,
        SelectedRole,
        FocusedRole,
        FavoriteRole
    };

    using QAbstractListModel::QAbstractListModel;

    AppState *state() const { return m_state; }
    void setState(AppState *state);
    Prefs *prefs() const { return m_prefs; }
    void setPrefs(Prefs *prefs);
    int count() const { return m_headCount + m_tail.assets.count() - m_tailFirst; }
    int currentRow() const { return m_currentRow; }

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // Null past the ends. Valid until the model changes.
    const Asset *assetAt(int row) const;
    // Nowhere past the ends.
    Q_INVOKABLE cratewell::Location urlAt(int row) const;
    // -1 for an asset that is not shown.
    Q_INVOKABLE int rowOf(const cratewell::Location &url) const { return m_head.assets.row(url); }
    // `modifiers` are Qt::KeyboardModifiers.
    Q_INVOKABLE void click(int row, int modifiers);
    // As when something is about to be done with the row and all that is selected beside it: focuses it, and
    // selects it alone unless it is among the selected.
    Q_INVOKABLE void pick(int row);

Q_SIGNALS:
    void stateChanged();
    void prefsChanged();
    void countChanged();
    void currentRowChanged();
    // Around every change of the rows, so that a view can stay where it is: it notes the url it shows first,
    // and finds the row of it again. Between them rows and urls do not go together.
    void aboutToApply(int newCount);
    void applied(bool relaidOut);

private:
    // Rows of one snapshot; `selected` says what the views know.
    struct Rows
    {
        VisibleAssets assets;
        std::vector<bool> selected;
        int selectedCount = 0;
    };
    struct Place
    {
        const Rows *rows;
        int row;
        const Asset &asset() const { return rows->assets.at(row); }
    };

    Place place(int row) const;
    void follow(const SnapshotDiff *diff);
    FormerRows formerRowsOf(const VisibleAssets &fresh, const SnapshotDiff *diff) const;
    Rows carriedOver(const VisibleAssets &fresh, const FormerRows &former) const;
    void apply(Rows fresh, const FormerRows &former, const RowChanges &changes);
    void applyRuns(Rows fresh, const RowChanges &changes);
    void relayout(Rows fresh, const FormerRows &former);
    void show(Rows rows);
    void updateSelected();
    void updateFocused();
    void updateFavorites();
    void updateCurrentRow();
    // `rows` are ascending; too many runs of them are reported as one.
    void notifyChanged(const std::vector<int> &rows, const QList<int> &roles);

    QPointer<AppState> m_state;
    QPointer<Prefs> m_prefs;
    // The rows are the first m_headCount of the head and, while runs of changes are being applied, those of
    // the tail from m_tailFirst on: no list is ever shifted.
    Rows m_head;
    int m_headCount = 0;
    Rows m_tail;
    int m_tailFirst = 0;
    Location m_focused;
    LocationSet m_favorites;
    int m_currentRow = -1;
    bool m_applying = false;
    bool m_outdated = false; // something changed while changes were being applied
};

} // namespace cratewell
