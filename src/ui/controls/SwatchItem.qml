pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// One color of a menu.
GlassMenuItem {
    id: item

    required property color swatch

    checkable: true
    implicitWidth: 148
    leftPadding: 30

    indicator: Rectangle {
        anchors.verticalCenter: parent.verticalCenter
        border.color: item.highlighted ? Theme.accentForeground : "transparent"
        color: item.swatch
        height: 14
        radius: 7
        width: 14
        x: 9

        Icon {
            anchors.centerIn: parent
            color: item.swatch.a > 0 ? "#16161C" : item.foreground
            size: 12
            text: "check"
            visible: item.checked
        }
    }
}
