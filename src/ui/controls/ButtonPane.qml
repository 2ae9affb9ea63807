pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// What lies under a button: glass, or the accent for the prominent one, and the ring of the keyboard's focus.
Item {
    id: pane

    required property bool prominent
    required property bool hovered
    required property bool pressed
    required property bool focused

    ControlGlass {
        anchors.fill: parent
        hovered: pane.hovered
        pressed: pane.pressed
        visible: !pane.prominent
    }
    AccentGlass {
        anchors.fill: parent
        hovered: pane.hovered
        pressed: pane.pressed
        visible: pane.prominent
    }
    FocusRing { shown: pane.focused }
}
