pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The window's title area: buttons, title mark and the menu.
Item {
    id: header

    required property Window window
    required property Commands commands

    height: 46

    WindowDragArea {
        anchors.fill: parent
        window: header.window
    }
    WindowButtons {
        id: windowButtons

        anchors.left: parent.left
        anchors.leftMargin: 15
        anchors.verticalCenter: parent.verticalCenter
        anchors.verticalCenterOffset: 2
        window: header.window
    }
    StarItem {
        id: star

        anchors.left: windowButtons.right
        anchors.leftMargin: 10
        anchors.verticalCenter: windowButtons.verticalCenter
        height: 18
        width: 18
    }
    Label {
        anchors.left: star.right
        anchors.leftMargin: 8
        anchors.verticalCenter: windowButtons.verticalCenter
        font.pixelSize: Theme.headingSize
        font.weight: Font.Bold
        text: "Cratewell"
    }
    IconButton {
        id: menuButton

        anchors.right: parent.right
        anchors.rightMargin: 14
        anchors.verticalCenter: windowButtons.verticalCenter
        size: 20
        symbol: "menu"
        text: qsTr("Menu")

        onClicked: menu.open()

        PopupHost {
            id: menu

            y: menuButton.height + 4

            popup: CommandMenu { commands: header.commands }
        }
    }
}
