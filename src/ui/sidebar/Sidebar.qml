pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// Where the user chooses what the main area shows.
GlassPanel {
    id: sidebar

    required property Window window
    required property Commands commands

    // `at` is where in the sidebar.
    function showMenu(row: int, at: point): void {
        folderMenu.reopen({
            at: at,
            commands: sidebar.commands,
            folder: tree.folderAt(row),
            root: tree.parentOf(row) < 0
        });
    }

    LibraryCounts { id: libraryCounts }
    FolderTreeModel { id: tree }

    SidebarHeader {
        id: header

        anchors.left: parent.left
        anchors.right: parent.right
        commands: sidebar.commands
        window: sidebar.window
    }

    ListView {
        id: list

        activeFocusOnTab: true
        anchors.bottom: footer.top
        anchors.left: parent.left
        anchors.leftMargin: 11
        anchors.right: parent.right
        anchors.rightMargin: 11
        anchors.top: header.bottom
        boundsBehavior: Flickable.StopAtBounds
        cacheBuffer: 280
        clip: true
        currentIndex: -1
        highlightFollowsCurrentItem: false
        keyNavigationEnabled: false
        model: tree
        reuseItems: true
        topMargin: smartRows.height

        T.ScrollBar.vertical: ThinScrollBar {
            parent: sidebar
            x: sidebar.width - width - 1
            y: list.y
            height: list.height
        }

        Accessible.name: qsTr("Folders")
        Accessible.role: Accessible.Tree

        function moveTo(row: int): void {
            if (row < 0 || row >= count)
                return;
            currentIndex = row;
            positionViewAtIndex(row, ListView.Contain);
        }

        // For the keyboard's row.
        function showMenu(): void {
            const entry = itemAtIndex(currentIndex);
            if (entry)
                sidebar.showMenu(currentIndex, sidebar.mapFromItem(entry, 48, entry.height));
        }

        onTopMarginChanged: contentY = originY - topMargin
        onActiveFocusChanged: {
            if (activeFocus && currentIndex < 0)
                moveTo(Math.max(0, tree.rowOf(Navigator.folder)));
        }

        Keys.onDownPressed: moveTo(currentIndex + 1)
        Keys.onEnterPressed: Navigator.showFolder(tree.folderAt(currentIndex))
        Keys.onLeftPressed: {
            if (tree.expandedAt(currentIndex))
                tree.setExpanded(currentIndex, false);
            else
                moveTo(tree.parentOf(currentIndex));
        }
        Keys.onMenuPressed: showMenu()
        Keys.onPressed: event => {
            if (event.key !== Qt.Key_F10 || event.modifiers !== Qt.ShiftModifier)
                return;
            showMenu();
            event.accepted = true;
        }
        Keys.onReturnPressed: Navigator.showFolder(tree.folderAt(currentIndex))
        Keys.onRightPressed: {
            if (tree.expandableAt(currentIndex) && !tree.expandedAt(currentIndex))
                tree.setExpanded(currentIndex, true);
            else if (tree.expandableAt(currentIndex))
                moveTo(currentIndex + 1);
        }
        Keys.onSpacePressed: Navigator.showFolder(tree.folderAt(currentIndex))
        Keys.onUpPressed: moveTo(currentIndex - 1)

        delegate: FolderEntry {
            required property int index
            required property var folder

            current: list.activeFocus && ListView.isCurrentItem
            drop: drops.row === index ? drops.effect : DropController.Nothing
            selected: Navigator.folder === folder.text
            showCount: Prefs.showCounts
            width: ListView.view.width

            onAddWanted: AppState.newFolderInside(folder)
            onActivated: {
                list.currentIndex = index;
                Navigator.showFolder(folder);
            }
            onMenuAsked: at => sidebar.showMenu(index, sidebar.mapFromItem(this, at))
            onToggled: tree.setExpanded(index, !expanded)
        }

        // Rolls with the trees; bound components cannot be a view's header on Qt 6.4.
        SmartRows {
            id: smartRows

            parent: list.contentItem

            counts: libraryCounts
            width: list.width
            y: list.originY - height
        }
    }

    FolderDrops {
        id: drops

        anchors.fill: list
        list: list
        tree: tree
    }
    PopupLoader {
        id: folderMenu

        file: "FolderMenu.qml"
    }

    SidebarFooter {
        id: footer

        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.leftMargin: 11
        anchors.right: parent.right
        anchors.rightMargin: 11
        pinned: Prefs.pinned
        premiereRunning: Inserter.premiereRunning
        resolveRunning: Inserter.resolveRunning
        vaultSize: libraryCounts.size

        onPinToggled: Prefs.pinned = !Prefs.pinned
        onSettingsWanted: sidebar.commands.settings.triggered()
        onVaultOpened: AssetActions.openFolder(Vault.root)
    }
}
