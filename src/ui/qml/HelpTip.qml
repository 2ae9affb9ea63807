pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// Says what a control does after the pointer has rested on it. Made only while it is wanted.
Loader {
    id: loader

    required property string text
    required property bool wanted

    active: wanted && text.length > 0
    anchors.centerIn: parent
    sourceComponent: T.ToolTip {
        id: tip

        bottomPadding: 5
        delay: 600
        implicitHeight: contentHeight + topPadding + bottomPadding
        implicitWidth: contentWidth + leftPadding + rightPadding
        leftPadding: 9
        margins: 6
        rightPadding: 9
        text: loader.text
        topPadding: 5
        visible: true
        x: Math.round((parent.width - width) / 2)
        y: loader.parent.height / 2 + 6

        background: Rectangle {
            border.color: Theme.popupBorder
            color: Theme.popup
            radius: Theme.badgeRadius
        }
        contentItem: Label {
            font.pixelSize: Theme.secondarySize
            text: tip.text
        }
    }
}
