pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// Lies over its view's edge and shows while the view moves or the pointer is near.
T.ScrollBar {
    id: control

    implicitHeight: 10
    implicitWidth: 10
    minimumSize: 0.06
    padding: 2
    visible: size < 1

    // Assistive tools move the view by its entries.
    Accessible.ignored: true

    contentItem: Rectangle {
        color: Theme.foreground(control.pressed ? 0.5 : control.hovered ? 0.38 : 0.22)
        implicitHeight: 6
        implicitWidth: 6
        opacity: control.active ? 1 : 0
        radius: 3

        Behavior on opacity {
            NumberAnimation { duration: Theme.panelTime }
        }
    }
}
