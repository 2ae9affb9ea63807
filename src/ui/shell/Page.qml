pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// A page of the main area other than the grid.
Item {
    id: page

    required property string title
    required property string subtitle
    required property Window window
    // How far a subtitle of several lines pushes down what lies below it.
    readonly property real push: Math.max(0, subtitleLabel.height - 17)

    WindowDragArea {
        anchors.left: parent.left
        anchors.right: parent.right
        height: 56
        window: page.window
    }
    Label {
        anchors.left: parent.left
        anchors.leftMargin: 6
        anchors.right: parent.right
        anchors.rightMargin: 6
        font.letterSpacing: -0.4
        font.pixelSize: Theme.titleSize
        font.weight: Font.ExtraBold
        text: page.title
        y: 7

        Accessible.role: Accessible.Heading
    }
    Label {
        id: subtitleLabel

        anchors.left: parent.left
        anchors.leftMargin: 6
        anchors.right: parent.right
        anchors.rightMargin: 6
        color: Theme.textSecondary
        text: page.subtitle
        wrapMode: Text.Wrap
        y: 36
    }
}
