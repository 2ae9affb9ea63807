pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Takes files from other programs, or opens the file dialog.
Item {
    id: zone

    height: content.height + 50

    DropArea {
        id: drop

        anchors.fill: parent

        onDropped: drop => {
            ImportController.take(drop.urls);
            drop.accept(Qt.CopyAction);
        }
        onEntered: drag => drag.accepted = drag.hasUrls && ImportController.takes(drag.urls)
    }
    Rectangle {
        anchors.fill: parent
        color: Qt.rgba(Theme.accent.r, Theme.accent.g, Theme.accent.b, 0.16)
        radius: Theme.panelRadius
        visible: drop.containsDrag
    }
    DashedFrame {
        anchors.fill: parent
        color: drop.containsDrag ? Theme.accent : Theme.foreground(0.24)
        radius: Theme.panelRadius
    }
    Column {
        id: content

        anchors.centerIn: parent
        spacing: 8
        width: Math.min(430, parent.width - 32)

        IconTile {
            anchors.horizontalCenter: parent.horizontalCenter
            end: Theme.blue
            gradient: Prefs.gradientTiles
            height: 62
            start: Theme.cyan
            symbol: "download"
            symbolSize: 34
            width: 62
        }
        Label {
            font.pixelSize: 18
            font.weight: Font.Bold
            horizontalAlignment: Text.AlignHCenter
            text: drop.containsDrag ? qsTr("Release to import") : qsTr("Drop files or folders here")
            width: parent.width
        }
        Label {
            color: Theme.textSecondary
            horizontalAlignment: Text.AlignHCenter
            lineHeight: 1.2
            text: qsTr("Folders keep their structure. Files without a destination are sorted into Overlays, LUTs or SFX by type.")
            width: parent.width
            wrapMode: Text.Wrap
        }
        Item {
            height: 1
            width: 1
        }
        GlassButton {
            id: button

            anchors.horizontalCenter: parent.horizontalCenter
            prominent: true
            text: qsTr("Choose Files…")

            onClicked: menu.open()

            PopupHost {
                id: menu

                y: button.height + 4

                popup: ImportMenu {
                    onFilesWanted: ImportController.chooseFiles()
                    onFolderWanted: ImportController.chooseFolder()
                }
            }
        }
    }
}
