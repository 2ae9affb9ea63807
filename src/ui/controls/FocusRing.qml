pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Shows where the keyboard is; fills its parent.
Rectangle {
    required property bool shown

    anchors.fill: parent
    anchors.margins: -2
    border.color: Theme.accent
    border.width: 2
    color: "transparent"
    radius: Theme.controlRadius + 2
    visible: shown
}
