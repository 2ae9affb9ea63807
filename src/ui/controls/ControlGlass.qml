pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The pane under a control.
Rectangle {
    property bool hovered: false
    property bool pressed: false

    border.color: Theme.controlBorder
    color: pressed ? Theme.controlFillPressed : hovered ? Theme.controlFillHover : Theme.controlFill
    radius: Theme.controlRadius

    Behavior on color {
        ColorAnimation { duration: Theme.hoverTime }
    }
}
