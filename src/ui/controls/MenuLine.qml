pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// What a menu item shows: its symbol, if it has one, its text and its keys.
Item {
    id: line

    required property string text
    required property string keys
    required property color foreground
    required property color keysForeground
    property string symbol: ""
    property int indent: 0

    implicitHeight: label.implicitHeight

    Icon {
        anchors.verticalCenter: parent.verticalCenter
        color: line.foreground
        text: line.symbol
        visible: line.symbol.length > 0
        x: line.indent
    }
    Label {
        id: label

        anchors.left: parent.left
        anchors.leftMargin: line.indent + (line.symbol ? 23 : 0)
        anchors.right: keysLabel.left
        anchors.verticalCenter: parent.verticalCenter
        color: line.foreground
        text: line.text

        Accessible.ignored: true
    }
    Label {
        id: keysLabel

        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        color: line.keysForeground
        font.pixelSize: Theme.secondarySize
        text: line.keys

        Accessible.ignored: true
    }
}
