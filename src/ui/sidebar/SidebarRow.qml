pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// A fixed row of the sidebar: a page of the program or a list of assets.
Item {
    id: row

    required property string title
    required property string symbol
    required property color start
    required property color end
    required property bool gradient
    required property bool selected
    // Shown at the right end; negative for none.
    property int count: -1

    signal activated

    activeFocusOnTab: true
    height: 32
    width: parent?.width ?? 0

    Accessible.description: count >= 0 ? String(count) : ""
    Accessible.focusable: true
    Accessible.focused: activeFocus
    Accessible.name: title
    Accessible.role: Accessible.Button
    Accessible.selectable: true
    Accessible.selected: selected
    Accessible.onPressAction: row.activated()

    Keys.onDownPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
    Keys.onEnterPressed: activated()
    Keys.onReturnPressed: activated()
    Keys.onSpacePressed: activated()
    Keys.onUpPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)

    HoverHandler { id: hover }
    TapHandler {
        gesturePolicy: TapHandler.ReleaseWithinBounds

        onTapped: row.activated()
    }

    Rectangle {
        anchors.fill: parent
        color: row.selected ? Theme.rowSelected : hover.hovered ? Theme.rowHover : "transparent"
        radius: 9

        FocusRing {
            anchors.margins: 0
            radius: 9
            shown: row.activeFocus
        }
    }
    IconTile {
        id: tile

        anchors.left: parent.left
        anchors.leftMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        end: row.end
        gradient: row.gradient
        start: row.start
        symbol: row.symbol
    }
    Label {
        anchors.left: tile.right
        anchors.leftMargin: 10
        anchors.right: counter.left
        anchors.rightMargin: Theme.space2
        anchors.verticalCenter: parent.verticalCenter
        text: row.title

        Accessible.ignored: true
    }
    Label {
        id: counter

        anchors.right: parent.right
        anchors.rightMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.textTertiary
        font.pixelSize: Theme.secondarySize
        text: row.count >= 0 ? row.count : ""

        Accessible.ignored: true
    }
}
