pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// What a menu item shows: its text and its keys.
Item {
    id: line

    required property string text
    required property string keys
    required property color ink
    required property color keysInk

    implicitHeight: label.implicitHeight

    Label {
        id: label

        anchors.left: parent.left
        anchors.right: keysLabel.left
        anchors.verticalCenter: parent.verticalCenter
        color: line.ink
        text: line.text

        Accessible.ignored: true
    }
    Label {
        id: keysLabel

        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        color: line.keysInk
        font.pixelSize: Theme.secondarySize
        text: line.keys

        Accessible.ignored: true
    }
}
