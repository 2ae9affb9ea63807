pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The grid under its toolbar, or one of the pages; below them the work on files, while there is any.
FocusScope {
    id: area

    required property Window window
    required property Commands commands
    readonly property bool showsGrid: Navigator.place !== Navigator.Importer
                                      && Navigator.place !== Navigator.Trash
                                      && Navigator.place !== Navigator.Plugin

    // What the work on files takes at the bottom.
    readonly property real footHeight: progress.shown ? progress.height + Theme.space3 : 0
    // What must be seen above the lower edge: that work, and what can be done with the selection.
    readonly property real occupiedHeight: footHeight + (showsGrid ? grid.barSpace : 0)

    function focusSearch(): void {
        if (showsGrid)
            toolbar.focusSearch();
    }
    function offerImport(): void {
        importMenu.open();
    }

    Item {
        id: view

        anchors.bottom: parent.bottom
        anchors.bottomMargin: area.footHeight
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
    }
    Item {
        anchors.fill: view
        visible: area.showsGrid

        Toolbar {
            id: toolbar

            anchors.left: parent.left
            anchors.right: parent.right
            commands: area.commands
            window: area.window
        }
        AssetGrid {
            id: grid

            anchors.bottom: parent.bottom
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: toolbar.bottom
            focus: true
        }
    }
    OnDemand {
        anchors.fill: view
        wanted: Navigator.place === Navigator.Importer

        content: ImportPage {
            anchors.fill: parent
            window: area.window
        }
    }
    OnDemand {
        anchors.fill: view
        wanted: Navigator.place === Navigator.Trash

        content: TrashPage {
            anchors.fill: parent
            window: area.window
        }
    }
    Page {
        anchors.fill: view
        subtitle: qsTr("Panels that bring your vault into the editor.")
        title: AppState.scopeTitle
        visible: Navigator.place === Navigator.Plugin
        window: area.window
    }
    ProgressPanel {
        id: progress

        readonly property bool shown: OperationStatus.active

        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.leftMargin: 6
        anchors.right: parent.right
        anchors.rightMargin: 6
        detail: OperationStatus.detail
        fraction: OperationStatus.fraction
        remaining: OperationStatus.remaining
        title: OperationStatus.title
        visible: shown

        onCanceled: OperationStatus.cancel()
    }
    ErrorBanner {
        anchors.left: parent.left
        anchors.leftMargin: 6
        anchors.right: parent.right
        anchors.rightMargin: 6
        text: Notifications.bannerText
        y: 4

        onDismissed: Notifications.closeBanner()
    }
    PopupHost {
        id: importMenu

        x: area.showsGrid ? toolbar.importMenuX : 6
        y: area.showsGrid ? toolbar.importMenuY : 60

        popup: ImportMenu {
            onFilesWanted: AssetActions.importFiles()
            onFolderWanted: AssetActions.importFolder()
        }
    }
}
