pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The grid under its toolbar, or one of the pages.
FocusScope {
    id: area

    required property Window window
    required property Commands commands
    readonly property bool showsGrid: AppState.scope.kind !== Scope.Importer && AppState.scope.kind !== Scope.Trash
                                      && AppState.scope.kind !== Scope.Plugin

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
            model: AssetListModel {
                prefs: Prefs
                state: AppState
            }
        }
    }
    Loader {
        active: !area.showsGrid
        anchors.fill: parent
        sourceComponent: AppState.scope.kind === Scope.Importer ? importPage
                         : AppState.scope.kind === Scope.Trash ? trashPage : pluginsPage
    }
    Component {
        id: importPage

        Page {
            subtitle: qsTr("Add overlays, LUTs and sound effects to your vault.")
            title: AppState.scopeTitle
            window: area.window
        }
    }
    Component {
        id: trashPage

        Page {
            subtitle: qsTr("Deleted items stay here for 30 days, then they're removed for good.")
            title: AppState.scopeTitle
            window: area.window
        }
    }
    Component {
        id: pluginsPage

        Page {
            subtitle: qsTr("Panels that bring your vault into the editor.")
            title: AppState.scopeTitle
            window: area.window
        }
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
