pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Every menu command of the window with its keys.
Item {
    id: commands

    // Whether the keyboard is in a text field.
    required property bool typing

    signal importWanted
    signal settingsWanted

    readonly property Command newFolder: Command {
        keys: "Ctrl+Shift+N"
        text: qsTr("New Folder")

        onTriggered: AppState.newFolderHere()
    }
    readonly property Command importAssets: Command {
        keys: "Ctrl+I"
        text: qsTr("Import Assets…")

        onTriggered: commands.importWanted()
    }
    readonly property Command insert: Command {
        enabled: AssetActions.insertable
        keys: "Ctrl+Return"
        otherKeys: "Ctrl+Enter"
        text: qsTr("Insert at Playhead")

        onTriggered: Inserter.insertSelected()
    }
    readonly property Command playPause: Command {
        enabled: AppState.hasSelection
        keys: "Alt+Space"
        text: qsTr("Play / Pause Preview")

        onTriggered: AppState.togglePlay()
    }
    readonly property Command reveal: Command {
        enabled: AppState.hasSelection || AppState.selectedCount > 0
        keys: "Ctrl+Shift+R"
        text: qsTr("Reveal in Finder")

        onTriggered: AssetActions.revealSelected()
    }
    readonly property Command toggleFavorite: Command {
        enabled: AppState.hasSelection
        keys: "Ctrl+Alt+F"
        text: qsTr("Toggle Favorite")

        onTriggered: AssetActions.toggleFavoriteOfFocused()
    }
    readonly property Command newFolderWithSelection: Command {
        enabled: AppState.selectedCount > 0
        keys: "Ctrl+Alt+N"
        text: qsTr("New Folder with Selection…")

        onTriggered: AppState.newFolderFromSelection()
    }
    readonly property Command moveToTrash: Command {
        enabled: AppState.hasSelection || AppState.selectedCount > 0
        keys: "Ctrl+Delete"
        text: qsTr("Move to Trash")
        whileTyping: false

        onTriggered: AssetActions.moveSelectedToTrash()
    }
    readonly property Command selectAll: Command {
        enabled: AppState.visibleCount > 0
        keys: "Ctrl+A"
        text: qsTr("Select All")
        whileTyping: false

        onTriggered: AppState.selectAll()
    }
    readonly property Command settings: Command {
        keys: "Ctrl+,"
        text: qsTr("Settings…")

        onTriggered: commands.settingsWanted()
    }
    readonly property Command quit: Command {
        keys: "Ctrl+Q"
        text: qsTr("Quit")

        onTriggered: Qt.quit()
    }

    readonly property list<Command> all: [newFolder, importAssets, insert, playPause, reveal, toggleFavorite,
        newFolderWithSelection, moveToTrash, selectAll, settings, quit]

    Instantiator {
        model: commands.all

        Shortcut {
            required property Command modelData

            enabled: modelData.enabled && (modelData.whileTyping || !commands.typing)
            sequences: modelData.otherKeys ? [modelData.keys, modelData.otherKeys] : [modelData.keys]

            onActivated: modelData.triggered()
        }
    }
}
