pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Announces what importing will do by itself one day.
GlassPanel {
    id: card

    height: text.y + text.height + 15

    Icon {
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.cyan
        size: 22
        text: "bolt"
        x: 16
    }
    Label {
        id: title

        font.pixelSize: 14
        font.weight: Font.Bold
        text: qsTr("Auto-import")
        x: 51
        y: 14

        Accessible.role: Accessible.Heading
    }
    Rectangle {
        anchors.left: title.right
        anchors.leftMargin: 10
        anchors.verticalCenter: title.verticalCenter
        color: Theme.rowSelected
        height: 16
        radius: Theme.badgeRadius
        width: badge.width + 14

        Label {
            id: badge

            anchors.centerIn: parent
            font.letterSpacing: 0.6
            font.pixelSize: 10
            font.weight: Font.Bold
            text: "COMING SOON"
        }
    }
    Label {
        id: text

        anchors.left: title.left
        anchors.right: parent.right
        anchors.rightMargin: 15
        color: Theme.textSecondary
        font.pixelSize: Theme.secondarySize
        text: qsTr("Pick folders like Downloads, and Cratewell will file new overlays, LUTs and sound effects into your vault the moment they land.")
        wrapMode: Text.Wrap
        y: 35
    }
}
