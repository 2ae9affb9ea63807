pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// A pane of the window.
Rectangle {
    border.color: Theme.glassBorder
    color: Theme.panelFill
    radius: Theme.panelRadius
}
