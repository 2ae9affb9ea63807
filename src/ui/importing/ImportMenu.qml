pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Files or a folder: one file dialog does not take both.
Item {
    id: place

    readonly property ImportMenuLoader asker: parent as ImportMenuLoader

    GlassMenu {
        implicitWidth: 148
        title: qsTr("Import")
        visible: true

        onClosed: place.asker.release()

        GlassMenuItem {
            implicitWidth: 136
            text: qsTr("Files…")

            onTriggered: place.asker.filesWanted()
        }
        GlassMenuItem {
            implicitWidth: 136
            text: qsTr("Folder…")

            onTriggered: place.asker.folderWanted()
        }
    }
}
