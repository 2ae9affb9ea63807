pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// What can be done with a folder of the sidebar. A category's own folder stays where and what it is.
Item {
    id: place

    required property location folder
    required property bool root
    required property point at
    required property Commands commands

    readonly property color current: Prefs.color(folder)
    // Names are for those who do not see the colors.
    readonly property var palette: [
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

    GlassMenu {
        id: menu

        title: place.folder.name
        visible: true
        x: place.at.x
        y: place.at.y

        onClosed: (place.parent as PopupLoader)?.release()

        GlassMenuItem {
            text: qsTr("New Folder Inside…")

            onTriggered: AppState.newFolderInside(place.folder)
        }
        GlassMenuItem {
            id: rename

            text: qsTr("Rename…")

            onTriggered: AssetActions.rename(place.folder)
        }
        GlassMenu {
            id: colors

            implicitWidth: 160
            title: qsTr("Color")

            Repeater {
                model: place.palette

                SwatchItem {
                    required property var modelData

                    checked: Qt.colorEqual(place.current, modelData.hex)
                    swatch: modelData.hex
                    text: modelData.name

                    onTriggered: Prefs.setFolderColor(place.folder, modelData.hex)
                }
            }
            SwatchItem {
                checked: !place.palette.some(color => Qt.colorEqual(place.current, color.hex))
                swatch: "transparent"
                text: qsTr("Default")

                onTriggered: Prefs.setFolderColor(place.folder, "")
            }
        }
        GlassMenuItem {
            text: qsTr("Import Into This Folder…")

            onTriggered: {
                Navigator.showFolder(place.folder);
                place.commands.importAssets.triggered();
            }
        }
        GlassMenuItem {
            text: qsTr("Reveal in Finder")

            onTriggered: AssetActions.reveal(place.folder)
        }
        MenuDivider { id: divider }
        GlassMenuItem {
            id: trash

            destructive: true
            text: qsTr("Move to Trash")

            onTriggered: AssetActions.moveToTrash(place.folder)
        }

        Component.onCompleted: {
            if (!place.root)
                return;
            removeMenu(colors);
            for (const item of [rename, divider, trash])
                removeItem(item);
        }
    }
}
