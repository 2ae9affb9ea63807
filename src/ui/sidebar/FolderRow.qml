pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// A folder of a category's tree.
Item {
    id: row

    required property string name
    required property string symbol
    required property color tint
    required property bool tinted
    required property int depth
    required property int count
    required property bool expandable
    required property bool expanded
    required property bool selected
    required property bool current
    required property bool showCount
    // What a drop here would do: a DropController.Effect.
    required property int drop

    signal activated
    signal menuAsked(at: point)
    signal toggled

    height: 28

    Accessible.description: showCount ? String(count) : ""
    Accessible.focusable: true
    Accessible.focused: current
    Accessible.name: name
    Accessible.role: Accessible.TreeItem
    Accessible.selectable: true
    Accessible.selected: selected
    Accessible.onPressAction: row.activated()

    HoverHandler { id: hover }
    TapHandler {
        gesturePolicy: TapHandler.ReleaseWithinBounds

        onTapped: row.activated()
    }
    TapHandler {
        acceptedButtons: Qt.RightButton
        gesturePolicy: TapHandler.ReleaseWithinBounds

        onPressedChanged: {
            if (pressed)
                row.menuAsked(point.position);
        }
    }

    Rectangle {
        anchors.fill: parent
        border.color: Theme.accent
        border.width: row.drop === DropController.Nothing ? 0 : 2
        color: row.drop !== DropController.Nothing ? Qt.rgba(Theme.accent.r, Theme.accent.g, Theme.accent.b, 0.22)
             : row.selected ? Theme.rowSelected : hover.hovered ? Theme.rowHover : "transparent"
        radius: 8

        FocusRing {
            anchors.margins: 0
            radius: 8
            shown: row.current
        }
    }
    Item {
        id: chevron

        height: parent.height
        visible: row.expandable
        width: 22
        x: 4 + 14 * row.depth

        Accessible.name: row.expanded ? qsTr("Collapse %1").arg(row.name) : qsTr("Expand %1").arg(row.name)
        Accessible.role: Accessible.Button
        Accessible.onPressAction: row.toggled()

        Icon {
            anchors.centerIn: parent
            color: chevronHover.hovered ? Theme.text : Theme.textSecondary
            rotation: row.expanded ? 90 : 0
            text: "chevron_right"

            Behavior on rotation {
                NumberAnimation { duration: Theme.hoverTime }
            }
        }
        HoverHandler { id: chevronHover }
        TapHandler {
            gesturePolicy: TapHandler.WithinBounds

            onTapped: row.toggled()
        }
    }
    Icon {
        id: symbolIcon

        anchors.verticalCenter: parent.verticalCenter
        color: row.tinted ? row.tint : Theme.textSecondary
        text: row.symbol
        x: 26 + 14 * row.depth
    }
    Label {
        anchors.left: symbolIcon.right
        anchors.leftMargin: 7
        anchors.right: row.drop === DropController.Nothing ? counter.left : landing.left
        anchors.rightMargin: Theme.space2
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.textFolder
        text: row.name

        Accessible.ignored: true
    }
    Label {
        id: counter

        anchors.right: parent.right
        anchors.rightMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.textTertiary
        font.pixelSize: Theme.secondarySize
        text: row.showCount ? row.count : ""
        visible: row.drop === DropController.Nothing

        Accessible.ignored: true
    }
    Rectangle {
        id: landing

        anchors.right: parent.right
        anchors.rightMargin: 5
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.accent
        height: 18
        radius: Theme.badgeRadius
        visible: row.drop !== DropController.Nothing
        width: effect.implicitWidth + 12

        Label {
            id: effect

            anchors.centerIn: parent
            color: Theme.accentForeground
            font.pixelSize: Theme.secondarySize
            font.weight: Font.DemiBold
            text: row.drop === DropController.Move ? qsTr("Move") : row.drop === DropController.Copy ? qsTr("Copy")
                : row.drop === DropController.Sort ? qsTr("Copy, sorted by type")
                : row.drop === DropController.MoveAndCopy ? qsTr("Move and copy") : qsTr("Checking…")
        }
    }
}
