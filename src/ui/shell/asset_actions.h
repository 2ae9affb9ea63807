#pragma once

#include "platform/file_chooser.h"
#include "platform/location.h"
#include "vault/trash_item.h"

#include <QObject>
#include <QtQml/qqml.h>
#include <optional>
#include <vector>

class QJSEngine;
class QQmlEngine;

namespace cratewell {

class AppState;
class Inserter;
class Prefs;
class Vault;
class Workspace;

// What the user can do with assets and folders: menus, keys, buttons, sheets and drops call these. Calls
// return at once; work on files goes through the vault's queue. Main thread; owned by Application.
class AssetActions : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    // How many selected assets are in view: those that the actions "in view" act on.
    Q_PROPERTY(int countInView READ countInView NOTIFY changed FINAL)
    // Every one of them is a favorite.
    Q_PROPERTY(bool favoritesInView READ favoritesInView NOTIFY favoritesInViewChanged FINAL)
    // The focused asset is of a kind that is inserted, and no insert is under way.
    Q_PROPERTY(bool insertable READ isInsertable NOTIFY insertableChanged FINAL)
public:
    // As Target.
    enum Editor { Resolve, Premiere };
    Q_ENUM(Editor)

    AssetActions(Vault &vault, Prefs &prefs, AppState &state, Inserter &inserter, Workspace &workspace,
                 FileChooser &chooser);
    static AssetActions *create(QQmlEngine *engine, QJSEngine *);

    int countInView() const;
    bool favoritesInView() const;
    bool isInsertable() const;

    // The focused asset; nothing without one.
    Q_INVOKABLE void insertInto(cratewell::AssetActions::Editor editor);

    Q_INVOKABLE void toggleFavorite(const cratewell::Location &asset);
    Q_INVOKABLE void toggleFavoriteOfFocused();
    // Makes all of them favorites; when all are, none.
    Q_INVOKABLE void toggleFavoritesInView();

    // Opens the rename sheet for an item or the focused asset.
    Q_INVOKABLE void rename(const cratewell::Location &item);
    Q_INVOKABLE void renameFocused();
    // Ends the rename sheet with the name typed there.
    Q_INVOKABLE void renameTo(const QString &name);

    // Ends the new-folder sheet with the name typed there. The new folder takes what is to be moved, or else
    // comes into view if the user has not gone elsewhere meanwhile.
    Q_INVOKABLE void createFolder(const QString &name);

    void move(const std::vector<Location> &items, const Location &folder);
    Q_INVOKABLE void moveInViewTo(const cratewell::Location &folder);

    Q_INVOKABLE void moveToTrash(const cratewell::Location &item);
    Q_INVOKABLE void moveInViewToTrash();
    // Everything selected, in view or not, or else the focused asset.
    Q_INVOKABLE void moveSelectedToTrash();
    // Takes back what a move to the trash did, as far as it is still there.
    void undoTrash(const std::vector<TrashItem> &items);

    Q_INVOKABLE void reveal(const cratewell::Location &item);
    // Everything selected, in view or not, or else the focused asset.
    Q_INVOKABLE void revealSelected();
    Q_INVOKABLE void openFolder(const cratewell::Location &folder);

    // Lets the user choose what to import into the folder in view, or by type in other places.
    Q_INVOKABLE void importFiles();
    Q_INVOKABLE void importFolder();
    // The same into any folder; without one by type.
    void chooseImports(ChooseRequest::What what, const std::optional<Location> &into);
    // Moves or copies, as the user has set.
    void importItems(const std::vector<Location> &items, const std::optional<Location> &into);

Q_SIGNALS:
    void changed();
    void favoritesInViewChanged();
    void insertableChanged();

private:
    std::vector<Location> itemsInView() const;
    std::vector<Location> selectedElseFocused() const;
    std::optional<Location> folderInView() const;

    Vault &m_vault;
    Prefs &m_prefs;
    AppState &m_state;
    Inserter &m_inserter;
    Workspace &m_workspace;
    FileChooser &m_chooser;
};

} // namespace cratewell
