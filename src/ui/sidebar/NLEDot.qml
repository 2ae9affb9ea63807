pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Says whether an editor runs.
Row {
    id: status

    required property string name
    required property bool running

    spacing: 6

    Accessible.description: running ? qsTr("Running") : qsTr("Not running")
    Accessible.name: name
    Accessible.role: Accessible.StaticText

    Item {
        anchors.verticalCenter: parent.verticalCenter
        height: 7
        width: 7

        SoftShadow {
            anchors.fill: parent
            anchors.margins: -blur
            blur: 6
            color: Qt.rgba(Theme.success.r, Theme.success.g, Theme.success.b, 0.6)
            radius: 3.5
            visible: status.running
        }
        Rectangle {
            anchors.fill: parent
            color: status.running ? Theme.success : Theme.foreground(0.22)
            radius: 3.5
        }
    }
    Label {
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.textSecondary
        font.pixelSize: Theme.secondarySize
        text: status.name

        Accessible.ignored: true
    }
}
