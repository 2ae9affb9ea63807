#pragma once

#include "state/visible_assets.h"

#include <QObject>
#include <QSet>
#include <memory>
#include <optional>

namespace cratewell {

class Prefs;
class Vault;
struct TrashItem;

// What the user is looking at: scope, selection, search, sort and the requests that become sheets. Main
// thread; never saved. `visibleAssets` is kept: it is made anew only after something it depends on
// changed.
class AppState : public QObject
{
    Q_OBJECT
    Q_PROPERTY(cratewell::Scope scope READ scope WRITE setScope NOTIFY scopeChanged FINAL)
    Q_PROPERTY(QString scopeTitle READ scopeTitle NOTIFY scopeChanged FINAL)
    Q_PROPERTY(bool hasSelection READ hasSelection NOTIFY selectionChanged FINAL)
    Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY searchChanged FINAL)
    Q_PROPERTY(cratewell::AssetOrder sort READ sort WRITE setSort NOTIFY sortChanged FINAL)
    Q_PROPERTY(bool showNewFolder READ showNewFolder WRITE setShowNewFolder NOTIFY showNewFolderChanged FINAL)
    // The rename sheet is shown.
    Q_PROPERTY(bool renaming READ isRenaming NOTIFY renameTargetChanged FINAL)
    Q_PROPERTY(bool showInspector READ showInspector WRITE setShowInspector NOTIFY showInspectorChanged FINAL)
    Q_PROPERTY(int playToggle READ playToggle NOTIFY playToggleChanged FINAL)
    Q_PROPERTY(int visibleCount READ visibleCount NOTIFY visibleAssetsChanged FINAL)
    Q_PROPERTY(int selectedCount READ selectedCount NOTIFY selectedChanged FINAL)
public:
    AppState(const Vault &vault, Prefs &prefs);
    ~AppState() override;

    const Scope &scope() const;
    void setScope(const Scope &scope);
    QString scopeTitle() const;

    // The focused asset: shown in the inspector, acted on by single-asset commands.
    const std::optional<Asset> &selection() const;
    void setSelection(const std::optional<Asset> &asset);
    bool hasSelection() const;
    // Every place chosen, also one that is not visible or gone; selectedCount counts the same.
    QSet<Location> selected() const;
    void setSelected(const QSet<Location> &selected);
    Q_INVOKABLE void clearSelected() { setSelected({}); }
    int selectedCount() const;
    // By index into the snapshot of visibleAssets.
    bool isSelected(AssetIndex index) const;

    QString search() const;
    void setSearch(const QString &search);
    AssetOrder sort() const;
    void setSort(AssetOrder sort);
    bool showInspector() const;
    void setShowInspector(bool show);
    bool showNewFolder() const;
    void setShowNewFolder(bool show);
    const std::optional<Location> &newFolderParent() const;
    const std::vector<Location> &pendingMove() const;
    void setPendingMove(const std::vector<Location> &items);
    const std::optional<Location> &renameTarget() const;
    void setRenameTarget(const std::optional<Location> &target);
    Q_INVOKABLE void stopRenaming() { setRenameTarget({}); }
    bool isRenaming() const { return renameTarget().has_value(); }
    int playToggle() const;

    const VisibleAssets &visibleAssets() const;
    int visibleCount() const;
    // The visible ones among `selected`, in visible order.
    std::vector<Asset> selectedAssets() const;

    void click(const Asset &asset, Qt::KeyboardModifiers modifiers);
    Q_INVOKABLE void moveBy(int delta);
    Q_INVOKABLE void selectAll();
    Q_INVOKABLE void togglePlay();
    void requestNewFolder(const std::optional<Location> &parent);
    Q_INVOKABLE void newFolderHere() { requestNewFolder({}); }
    Q_INVOKABLE void newFolderInside(const cratewell::Location &folder) { requestNewFolder(folder); }
    Q_INVOKABLE void newFolderFromSelection();

Q_SIGNALS:
    void scopeChanged();
    void selectionChanged();
    void selectedChanged();
    void searchChanged();
    void sortChanged();
    void showInspectorChanged();
    void showNewFolderChanged();
    void renameTargetChanged();
    void playToggleChanged();
    // `diff` is null when the snapshot is the same as before and only the choice from it differs; otherwise
    // it leads from the snapshot that was shown to the one that is shown now. Valid during the signal only.
    // The list has been made anew already, as everything else that this class reports.
    void visibleAssetsChanged(const cratewell::SnapshotDiff *diff);

private:
    void refresh();
    void follow(const SnapshotDiff &diff);
    void followRename(const Location &from, const Location &to);
    void followTrash(const std::vector<TrashItem> &items);
    void focus(const std::optional<Asset> &asset);

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace cratewell
