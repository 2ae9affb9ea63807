pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The heading above a category's tree.
Item {
    id: heading

    required property string title

    signal addWanted

    height: 35

    SectionLabel {
        anchors.left: parent.left
        anchors.leftMargin: 8
        anchors.verticalCenter: addButton.verticalCenter
        text: heading.title
    }
    IconButton {
        id: addButton

        anchors.bottom: parent.bottom
        anchors.bottomMargin: 1
        anchors.right: parent.right
        anchors.rightMargin: 2
        size: 16
        symbol: "add"
        text: qsTr("New folder in %1").arg(heading.title)

        onClicked: heading.addWanted()
    }
}
