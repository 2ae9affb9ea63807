pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The work on files that takes its time, and the way to end it.
GlassPanel {
    id: panel

    required property string title
    required property string detail
    required property string remaining
    // 0 to 1.
    required property real fraction

    signal canceled

    height: 58

    Accessible.name: title
    Accessible.role: Accessible.Pane

    Label {
        id: titleLabel

        font.weight: Font.DemiBold
        text: panel.title
        x: 16
        y: 11
    }
    Label {
        anchors.left: titleLabel.right
        anchors.leftMargin: 10
        anchors.right: remainingLabel.left
        anchors.rightMargin: 10
        anchors.verticalCenter: titleLabel.verticalCenter
        color: Theme.textSecondary
        font.pixelSize: Theme.secondarySize
        text: panel.detail
    }
    Label {
        id: remainingLabel

        anchors.right: button.left
        anchors.rightMargin: 14
        anchors.verticalCenter: titleLabel.verticalCenter
        color: Theme.textTertiary
        font.pixelSize: Theme.secondarySize
        text: panel.remaining
        visible: panel.width >= 430
        width: visible ? implicitWidth : 0
    }
    Rectangle {
        anchors.left: titleLabel.left
        anchors.right: remainingLabel.right
        color: Theme.track
        height: 4
        radius: 2
        y: 39

        Accessible.description: panel.detail
        Accessible.name: panel.title
        Accessible.role: Accessible.ProgressBar

        Rectangle {
            color: Theme.accent
            height: parent.height
            radius: 2
            width: Math.round(parent.width * Math.max(0, Math.min(1, panel.fraction)))
        }
    }
    GlassButton {
        id: button

        anchors.right: parent.right
        anchors.rightMargin: 14
        anchors.verticalCenter: parent.verticalCenter
        text: qsTr("Cancel")

        onClicked: panel.canceled()
    }
}
