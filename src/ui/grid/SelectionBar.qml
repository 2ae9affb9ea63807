pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// What can be done with several selected assets, floating over the grid.
Rectangle {
    id: bar

    border.color: Theme.popupBorder
    color: Theme.popup
    radius: Theme.groupRadius
    width: row.width + 2 * row.x

    Accessible.name: qsTr("Selection")
    Accessible.role: Accessible.ToolBar

    Keys.onEscapePressed: AppState.clearSelected()

    SoftShadow {
        anchors.fill: parent
        anchors.margins: -blur
        blur: 22
        color: Qt.rgba(0, 0, 0, Theme.dark ? 0.5 : 0.2)
        drop: 6
        radius: bar.radius
        z: -1
    }
    // What lies below is not meant.
    MouseArea { anchors.fill: parent }
    Row {
        id: row

        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.space2
        x: Theme.space4

        Label {
            anchors.verticalCenter: parent.verticalCenter
            font.weight: Font.Bold
            rightPadding: 2
            text: qsTr("%1 selected").arg(AssetActions.countInView)
        }
        GlassButton {
            helpText: qsTr("Move to another folder")
            symbol: "drive_file_move"
            text: qsTr("Move to…")

            onClicked: moveMenu.open()

            PopupHost {
                id: moveMenu

                popup: MoveMenu {}
            }
        }
        GlassButton {
            compact: true
            symbol: "create_new_folder"
            text: qsTr("New Folder with Selection…")

            onClicked: AppState.newFolderFromSelection()
        }
        GlassButton {
            compact: true
            symbol: AssetActions.favoritesInView ? "star" : "star_border"
            text: AssetActions.favoritesInView ? qsTr("Unfavorite") : qsTr("Favorite")

            onClicked: AssetActions.toggleFavoritesInView()
        }
        GlassButton {
            compact: true
            symbol: "search"
            text: qsTr("Reveal in Finder")

            onClicked: AssetActions.revealSelected()
        }
        GlassButton {
            compact: true
            destructive: true
            symbol: "delete"
            text: qsTr("Move to Trash")

            onClicked: AssetActions.moveInViewToTrash()
        }
        IconButton {
            anchors.verticalCenter: parent.verticalCenter
            symbol: "close"
            text: qsTr("Clear Selection")

            onClicked: AppState.clearSelected()
        }
    }
}
