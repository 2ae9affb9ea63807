pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Names the group of menu items below it.
Item {
    id: heading

    required property string text

    implicitHeight: 24
    implicitWidth: 224

    SectionLabel {
        anchors.left: parent.left
        anchors.leftMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        text: heading.text
    }
}
