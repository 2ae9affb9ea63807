pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The grid under its toolbar, or one of the pages.
FocusScope {
    id: area

    required property Window window
    required property Commands commands
    readonly property bool showsGrid: Navigator.place !== Navigator.Importer
                                      && Navigator.place !== Navigator.Trash
                                      && Navigator.place !== Navigator.Plugin

    function focusSearch(): void {
        if (showsGrid)
            toolbar.focusSearch();
    }

    Item {
        anchors.fill: parent
        visible: area.showsGrid

        Toolbar {
            id: toolbar

            anchors.left: parent.left
            anchors.right: parent.right
            commands: area.commands
            window: area.window
        }
        AssetGrid {
            anchors.bottom: parent.bottom
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: toolbar.bottom
            focus: true
        }
    }
    Page {
        anchors.fill: parent
        subtitle: Navigator.place === Navigator.Importer
                  ? qsTr("Add overlays, LUTs and sound effects to your vault.")
                  : Navigator.place === Navigator.Trash
                    ? qsTr("Deleted items stay here for 30 days, then they're removed for good.")
                    : qsTr("Panels that bring your vault into the editor.")
        title: AppState.scopeTitle
        visible: !area.showsGrid
        window: area.window
    }
    ErrorBanner {
        anchors.left: parent.left
        anchors.leftMargin: 6
        anchors.right: parent.right
        anchors.rightMargin: 6
        text: Vault.lastError
        y: 4

        onDismissed: Vault.clearLastError()
    }
}
