pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// One item in the trash.
Rectangle {
    id: row

    required property string name
    required property string symbol
    required property string origin
    required property string size
    required property string timeLeft
    required property bool urgent
    required property bool picked
    // The keyboard is on this row.
    required property bool current
    readonly property bool roomy: width >= 560

    signal pickAsked
    signal restoreAsked
    signal deleteAsked

    border.color: picked ? Qt.rgba(Theme.accent.r, Theme.accent.g, Theme.accent.b, 0.7) : Theme.glassBorder
    color: picked ? Qt.rgba(Theme.accent.r, Theme.accent.g, Theme.accent.b, 0.18) : Theme.glassFill
    height: 52
    radius: Theme.groupRadius

    Accessible.checkable: true
    Accessible.checked: picked
    Accessible.description: origin + ", " + size + ", " + timeLeft
    Accessible.focusable: true
    Accessible.focused: current
    Accessible.name: name
    Accessible.role: Accessible.ListItem
    Accessible.selectable: true
    Accessible.selected: picked
    Accessible.onPressAction: row.pickAsked()

    FocusRing {
        anchors.margins: 0
        radius: row.radius
        shown: row.current
    }
    TapHandler { onTapped: row.pickAsked() }

    Icon {
        anchors.verticalCenter: parent.verticalCenter
        color: row.picked ? Theme.accent : Theme.textTertiary
        size: 20
        text: row.picked ? "check_circle" : "radio_button_unchecked"
        x: 11
    }
    Icon {
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.textSecondary
        size: 20
        text: row.symbol
        x: 40
    }
    Column {
        anchors.left: parent.left
        anchors.leftMargin: 68
        anchors.right: sizeLabel.visible ? sizeLabel.left : timeLabel.left
        anchors.rightMargin: Theme.space2
        anchors.verticalCenter: parent.verticalCenter
        spacing: 1

        Label {
            elide: Text.ElideMiddle
            font.weight: Font.DemiBold
            text: row.name
            width: parent.width

            Accessible.ignored: true
        }
        Label {
            color: Theme.textSecondary
            font.pixelSize: Theme.secondarySize
            text: row.origin
            width: parent.width
        }
    }
    Label {
        id: sizeLabel

        anchors.right: timeLabel.left
        anchors.rightMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.textSecondary
        font.pixelSize: Theme.bodySize
        text: row.size
        visible: row.width >= 440
        width: 62
    }
    Label {
        id: timeLabel

        anchors.right: buttons.left
        anchors.rightMargin: 6
        anchors.verticalCenter: parent.verticalCenter
        color: row.urgent ? Theme.warning : Theme.dark ? "white" : Theme.text
        font.pixelSize: Theme.bodySize
        font.weight: Font.Medium
        text: row.timeLeft
        width: 88
    }
    Row {
        id: buttons

        anchors.right: parent.right
        anchors.rightMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        spacing: 9

        GlassButton {
            activeFocusOnTab: row.current || activeFocus
            compact: !row.roomy
            symbol: compact ? "restore" : ""
            text: qsTr("Restore")

            Accessible.description: row.name

            onClicked: row.restoreAsked()
        }
        GlassButton {
            activeFocusOnTab: row.current || activeFocus
            compact: !row.roomy
            destructive: true
            symbol: compact ? "delete_forever" : ""
            text: qsTr("Delete Now")

            Accessible.description: row.name

            onClicked: row.deleteAsked()
        }
    }
}
