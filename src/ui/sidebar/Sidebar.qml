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
        folderMenu.folder = FolderTreeModel.folderAt(row);
        folderMenu.root = FolderTreeModel.parentOf(row) < 0;
        folderMenu.x = at.x;
        folderMenu.y = at.y;
        folderMenu.reopen();
    }

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
        model: FolderTreeModel
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
                moveTo(Math.max(0, FolderTreeModel.rowOf(Navigator.folder)));
        }

        Keys.onDownPressed: moveTo(currentIndex + 1)
        Keys.onEnterPressed: Navigator.showFolder(FolderTreeModel.folderAt(currentIndex))
        Keys.onLeftPressed: {
            if (FolderTreeModel.expandedAt(currentIndex))
                FolderTreeModel.setExpanded(currentIndex, false);
            else
                moveTo(FolderTreeModel.parentOf(currentIndex));
        }
        Keys.onMenuPressed: showMenu()
        Keys.onPressed: event => {
            if (event.key !== Qt.Key_F10 || event.modifiers !== Qt.ShiftModifier)
                return;
            showMenu();
            event.accepted = true;
        }
        Keys.onReturnPressed: Navigator.showFolder(FolderTreeModel.folderAt(currentIndex))
        Keys.onRightPressed: {
            if (FolderTreeModel.expandableAt(currentIndex) && !FolderTreeModel.expandedAt(currentIndex))
                FolderTreeModel.setExpanded(currentIndex, true);
            else if (FolderTreeModel.expandableAt(currentIndex))
                moveTo(currentIndex + 1);
        }
        Keys.onSpacePressed: Navigator.showFolder(FolderTreeModel.folderAt(currentIndex))
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
            onToggled: FolderTreeModel.setExpanded(index, !expanded)
        }

        // Rolls with the trees; bound components cannot be a view's header on Qt 6.4.
        SmartRows {
            id: smartRows

            parent: list.contentItem

            width: list.width
            y: list.originY - height
        }
    }

    FolderDrops {
        id: drops

        anchors.fill: list
        list: list
    }
    PopupHost {
        id: folderMenu

        property location folder
        property bool root: false

        popup: FolderMenu {
            commands: sidebar.commands
            folder: folderMenu.folder
            root: folderMenu.root
        }
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
        vaultSize: LibraryCounts.size

        onPinToggled: Prefs.pinned = !Prefs.pinned
        onSettingsWanted: sidebar.commands.settings.triggered()
        onVaultOpened: AssetActions.openFolder(Vault.root)
    }
}
