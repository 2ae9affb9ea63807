pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// The text of a help tip, below the control that it explains.
Item {
    id: bubble

    required property string text

    T.ToolTip {
        bottomPadding: 5
        delay: 600
        implicitHeight: contentHeight + topPadding + bottomPadding
        implicitWidth: contentWidth + leftPadding + rightPadding
        leftPadding: 9
        margins: 6
        rightPadding: 9
        text: bubble.text
        topPadding: 5
        visible: true
        x: Math.round((bubble.width - width) / 2)
        y: bubble.height + 6

        background: Rectangle {
            border.color: Theme.popupBorder
            color: Theme.popup
            radius: Theme.badgeRadius
        }
        contentItem: Label {
            font.pixelSize: Theme.secondarySize
            text: bubble.text
        }
    }
}
