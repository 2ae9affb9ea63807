pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// What can be done with a folder of the sidebar. A category's own folder stays where and what it is.
GlassMenu {
    id: folderMenu

    required property location folder
    required property bool root
    required property Commands commands

    readonly property color current: Prefs.color(folder)
    // Names are for those who do not see the colors.
    readonly property var choices: [
        { name: qsTr("Red"), hex: "#FF6B6B" },
        { name: qsTr("Orange"), hex: "#FF9F43" },
        { name: qsTr("Yellow"), hex: "#FFD93D" },
        { name: qsTr("Green"), hex: "#62D991" },
        { name: qsTr("Cyan"), hex: "#2FD6FF" },
        { name: qsTr("Blue"), hex: "#4A5CFF" },
        { name: qsTr("Purple"), hex: "#B38CFF" },
        { name: qsTr("Pink"), hex: "#FF4ECD" },
        { name: qsTr("Gray"), hex: "#8E8E96" }
    ]

    title: folderMenu.folder.name
    visible: true

    GlassMenuItem {
        text: qsTr("New Folder Inside…")

        onTriggered: AppState.newFolderInside(folderMenu.folder)
    }
    GlassMenuItem {
        id: rename

        text: qsTr("Rename…")

        onTriggered: AssetActions.rename(folderMenu.folder)
    }
    GlassMenu {
        id: colors

        implicitWidth: 160
        title: qsTr("Color")

        Repeater {
            model: folderMenu.choices

            SwatchItem {
                required property var modelData

                checked: Qt.colorEqual(folderMenu.current, modelData.hex)
                swatch: modelData.hex
                text: modelData.name

                onTriggered: Prefs.setFolderColor(folderMenu.folder, modelData.hex)
            }
        }
        SwatchItem {
            checked: !folderMenu.choices.some(color => Qt.colorEqual(folderMenu.current, color.hex))
            swatch: "transparent"
            text: qsTr("Default")

            onTriggered: Prefs.setFolderColor(folderMenu.folder, "")
        }
    }
    GlassMenuItem {
        text: qsTr("Import Into This Folder…")

        onTriggered: {
            Navigator.showFolder(folderMenu.folder);
            folderMenu.commands.importAssets.triggered();
        }
    }
    GlassMenuItem {
        text: qsTr("Reveal in Finder")

        onTriggered: AssetActions.reveal(folderMenu.folder)
    }
    MenuDivider { id: divider }
    GlassMenuItem {
        id: trash

        destructive: true
        text: qsTr("Move to Trash")

        onTriggered: AssetActions.moveToTrash(folderMenu.folder)
    }

    Component.onCompleted: {
        if (!folderMenu.root)
            return;
        removeMenu(colors);
        for (const item of [rename, divider, trash])
            removeItem(item);
    }
}
