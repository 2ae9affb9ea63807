pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// One folder of a list in a menu.
Item {
    id: line

    required property string name
    required property int depth
    required property bool current

    signal chosen
    signal hovered

    Accessible.focusable: true
    Accessible.focused: current
    Accessible.name: name
    Accessible.role: Accessible.MenuItem
    Accessible.onPressAction: line.chosen()

    HoverHandler {
        onHoveredChanged: {
            if (hovered)
                line.hovered();
        }
    }
    TapHandler {
        gesturePolicy: TapHandler.ReleaseWithinBounds

        onTapped: line.chosen()
    }
    Rectangle {
        anchors.fill: parent
        color: line.current ? Theme.accent : "transparent"
        radius: 7
    }
    MenuLine {
        anchors.left: parent.left
        anchors.leftMargin: 10
        anchors.right: parent.right
        anchors.rightMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        indent: 14 * line.depth
        foreground: line.current ? Theme.accentForeground : Theme.text
        keys: ""
        keysForeground: foreground
        symbol: "folder"
        text: line.name
    }
}
