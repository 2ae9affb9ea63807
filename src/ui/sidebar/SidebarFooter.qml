pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The vault's size, which editors run, and three switches.
Item {
    id: footer

    required property string vaultSize
    required property bool resolveRunning
    required property bool premiereRunning
    required property bool pinned

    signal pinToggled
    signal vaultOpened
    signal settingsWanted

    height: 62

    Item {
        anchors.left: parent.left
        anchors.right: parent.right
        height: 24

        Label {
            anchors.left: parent.left
            anchors.leftMargin: 6
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.textTertiary
            font.pixelSize: Theme.secondarySize
            text: qsTr("Vault")
        }
        Label {
            anchors.right: parent.right
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.textTertiary
            font.pixelSize: Theme.secondarySize
            text: footer.vaultSize

            Accessible.description: qsTr("Size of the vault")
        }
    }
    Rectangle {
        id: divider

        anchors.left: parent.left
        anchors.right: parent.right
        color: Theme.separator
        height: 1
        y: 25
    }
    Item {
        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: divider.bottom

        Row {
            anchors.left: parent.left
            anchors.leftMargin: 6
            anchors.verticalCenter: parent.verticalCenter
            spacing: 12

            NLEDot { name: "Resolve"; running: footer.resolveRunning }
            NLEDot { name: "Premiere"; running: footer.premiereRunning }
        }
        Row {
            anchors.right: parent.right
            anchors.rightMargin: 1
            anchors.verticalCenter: parent.verticalCenter

            IconButton {
                checked: footer.pinned
                size: 17
                symbol: "push_pin"
                text: qsTr("Keep Cratewell above your editor")

                Accessible.checkable: true

                onClicked: footer.pinToggled()
            }
            IconButton {
                size: 17
                symbol: "folder_open"
                text: qsTr("Open the vault in Finder")

                onClicked: footer.vaultOpened()
            }
            IconButton {
                size: 17
                symbol: "settings"
                text: qsTr("Customize Cratewell")

                onClicked: footer.settingsWanted()
            }
        }
    }
}
