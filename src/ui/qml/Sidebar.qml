pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// Where the user chooses what the main area shows.
GlassPanel {
    id: sidebar

    required property Window window
    required property Commands commands

    component SmartRow: SidebarRow {
        gradient: Prefs.gradientTiles
    }
    component ScopeRow: SmartRow {
        required property int kind

        selected: AppState.scope.kind === kind

        onActivated: Requests.show(kind)
    }
    component PluginRow: SmartRow {
        required property string page

        selected: AppState.scope.kind === Scope.Plugin && AppState.scope.page === page
        symbol: "extension"

        onActivated: Requests.showPlugin(page)
    }

    LibraryCounts { id: counts }
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

        readonly property string shownFolder: AppState.scope.kind === Scope.Folder ? AppState.scope.folder.text : ""

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
        section.property: "category"

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

        onActiveFocusChanged: {
            if (activeFocus && currentIndex < 0)
                moveTo(Math.max(0, tree.rowOf(AppState.scope.folder)));
        }

        Keys.onDownPressed: moveTo(currentIndex + 1)
        Keys.onEnterPressed: Requests.showFolder(tree.folderAt(currentIndex))
        Keys.onLeftPressed: {
            if (tree.expandedAt(currentIndex))
                tree.setExpanded(currentIndex, false);
            else
                moveTo(tree.parentOf(currentIndex));
        }
        Keys.onReturnPressed: Requests.showFolder(tree.folderAt(currentIndex))
        Keys.onRightPressed: {
            if (tree.expandableAt(currentIndex) && !tree.expandedAt(currentIndex))
                tree.setExpanded(currentIndex, true);
            else if (tree.expandableAt(currentIndex))
                moveTo(currentIndex + 1);
        }
        Keys.onSpacePressed: Requests.showFolder(tree.folderAt(currentIndex))
        Keys.onUpPressed: moveTo(currentIndex - 1)

        header: Column {
            width: ListView.view.width

            ScopeRow {
                count: Prefs.showCounts ? counts.all : -1
                end: Theme.pink
                kind: Scope.All
                start: Theme.accent
                symbol: "apps"
                title: qsTr("All Assets")
            }
            ScopeRow {
                count: Prefs.showCounts ? counts.favorites : -1
                end: Theme.orange
                kind: Scope.Favorites
                start: Theme.amber
                symbol: "star"
                title: qsTr("Favorites")
            }
            ScopeRow {
                count: Prefs.showCounts ? counts.recent : -1
                end: "#3A3A42"
                kind: Scope.Recent
                start: Theme.gray
                symbol: "schedule"
                title: qsTr("Recently Inserted")
            }
            ScopeRow {
                end: Theme.blue
                kind: Scope.Importer
                start: Theme.cyan
                symbol: "download"
                title: qsTr("Import")
            }
            ScopeRow {
                end: "#2A2A30"
                kind: Scope.Trash
                start: "#5A5A63"
                symbol: "delete"
                title: qsTr("Trash")
            }
            Item {
                height: 33
                width: 1

                SectionLabel {
                    anchors.verticalCenter: parent.verticalCenter
                    anchors.verticalCenterOffset: 3
                    text: qsTr("Plugins")
                    x: 8
                }
            }
            PluginRow {
                end: Theme.blue
                page: "premiere"
                start: "#B38CFF"
                title: qsTr("Premiere panel")
            }
            PluginRow {
                end: Theme.teal
                page: "resolve"
                start: Theme.green
                title: qsTr("Resolve panel")
            }
        }
        section.delegate: CategorySection {
            required property string section

            canAdd: sidebar.commands.newFolder.enabled
            title: section
            width: ListView.view.width
        }
        delegate: FolderRow {
            id: folderRow

            required property int index
            required property var folder

            current: list.activeFocus && ListView.isCurrentItem
            selected: list.shownFolder === folder.text
            showCount: Prefs.showCounts
            width: ListView.view.width

            onActivated: {
                list.currentIndex = index;
                Requests.showFolder(folder);
            }
            onToggled: tree.setExpanded(index, !expanded)
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
        vaultSize: counts.size

        onPinToggled: Prefs.pinned = !Prefs.pinned
        onSettingsWanted: sidebar.commands.settings.triggered()
        onVaultOpened: Requests.openInFileManager(Vault.root)
    }
}
