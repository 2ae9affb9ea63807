pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// One folder of a list in a menu.
Item {
    id: line

    required property string name
    required property int depth
    // What stands for no folder has none.
    required property string symbol
    required property bool current
    required property bool checkable
    required property bool checked
    readonly property color foreground: current ? Theme.accentForeground : Theme.text

    signal chosen
    signal hovered

    Accessible.checkable: checkable
    Accessible.checked: checked
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
    Icon {
        anchors.verticalCenter: parent.verticalCenter
        color: line.foreground
        size: 14
        text: "check"
        visible: line.checked
        x: 7
    }
    MenuLine {
        anchors.left: parent.left
        anchors.leftMargin: line.checkable ? 26 : 10
        anchors.right: parent.right
        anchors.rightMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        indent: 14 * line.depth
        foreground: line.foreground
        keys: ""
        keysForeground: foreground
        symbol: line.symbol
        text: line.name
    }
}
