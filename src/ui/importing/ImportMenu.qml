pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Files or a folder: one file dialog does not take both.
GlassMenu {
    id: importMenu

    signal filesWanted
    signal folderWanted

    implicitWidth: 148
    title: qsTr("Import")
    visible: true

    GlassMenuItem {
        implicitWidth: 136
        text: qsTr("Files…")

        onTriggered: importMenu.filesWanted()
    }
    GlassMenuItem {
        implicitWidth: 136
        text: qsTr("Folder…")

        onTriggered: importMenu.folderWanted()
    }
}
