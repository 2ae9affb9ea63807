pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// A failure, while there is one to show.
Rectangle {
    id: banner

    required property string text

    signal dismissed

    border.color: Qt.rgba(Theme.destructive.r, Theme.destructive.g, Theme.destructive.b, 0.45)
    color: Theme.dark ? "#3A1A20" : "#FCE6E6"
    height: Math.max(40, label.implicitHeight + 20)
    radius: 12
    visible: text.length > 0

    Accessible.name: text
    Accessible.role: Accessible.AlertMessage

    Icon {
        anchors.left: parent.left
        anchors.leftMargin: 14
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.destructive
        size: 18
        text: "error"
    }
    Label {
        id: label

        anchors.left: parent.left
        anchors.leftMargin: 42
        anchors.right: closeButton.left
        anchors.rightMargin: Theme.space2
        anchors.verticalCenter: parent.verticalCenter
        elide: Text.ElideRight
        maximumLineCount: 3
        text: banner.text
        wrapMode: Text.Wrap

        Accessible.ignored: true
    }
    IconButton {
        id: closeButton

        anchors.right: parent.right
        anchors.rightMargin: 7
        anchors.verticalCenter: parent.verticalCenter
        size: 16
        symbol: "close"
        text: qsTr("Close")

        onClicked: banner.dismissed()
    }
}
