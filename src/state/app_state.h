#pragma once

#include "platform/file_chooser.h"
#include "state/visible_assets.h"

#include <QObject>
#include <QSet>
#include <memory>
#include <optional>

namespace cratewell {

class Prefs;
class Vault;
class Workspace;
struct TrashItem;

// What the user is looking at: scope, selection, search, sort and the requests that become sheets. Main
// thread; never saved. `visibleAssets` is memoised: it is made anew only after something it depends on
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
    // Without a chooser nothing can be chosen.
    AppState(Vault &vault, Prefs &prefs, Workspace &workspace, FileChooser *chooser = nullptr);
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
    const std::optional<Location> &renameTarget() const;
    void setRenameTarget(const std::optional<Location> &target);
    Q_INVOKABLE void stopRenaming() { setRenameTarget({}); }
    bool isRenaming() const { return renameTarget().has_value(); }
    int playToggle() const;

    const VisibleAssets &visibleAssets() const;
    int visibleCount() const;
    // The visible ones among `selected`, in visible order.
    std::vector<Asset> selectedAssets() const;
    // The row of an asset at this place, or -1.
    int visibleRow(const Location &url) const;

    void click(const Asset &asset, Qt::KeyboardModifiers modifiers);
    Q_INVOKABLE void moveBy(int delta);
    Q_INVOKABLE void selectAll();
    Q_INVOKABLE void togglePlay();
    void requestNewFolder(const std::optional<Location> &parent);
    Q_INVOKABLE void newFolderHere() { requestNewFolder({}); }
    Q_INVOKABLE void newFolderFromSelection();
    // What the new-folder sheet was opened for, with the name typed there; closes the sheet. The new folder
    // takes what is to be moved, or else comes into view if the user has not gone elsewhere meanwhile.
    Q_INVOKABLE void createNewFolder(const QString &name);
    // The same for the rename sheet.
    Q_INVOKABLE void renameTo(const QString &name);
    Q_INVOKABLE void revealSelected();
    // The visible ones among `selected`, or else the focused asset.
    Q_INVOKABLE void trashSelected();
    // Lets the user choose what to import into the scope's folder, or by type in other scopes.
    void importPanel(ChooseRequest::What what);
    // The same into any folder; without one by type.
    void importPanel(ChooseRequest::What what, const std::optional<Location> &into);
    Q_INVOKABLE void importFiles() { importPanel(ChooseRequest::What::Files); }
    Q_INVOKABLE void importFolder() { importPanel(ChooseRequest::What::Folders); }

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
    // The list has been made anew already, as everything else that this class tells.
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
