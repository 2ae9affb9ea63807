pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// Names the group of menu items below it.
T.MenuItem {
    id: heading

    enabled: false
    focusPolicy: Qt.NoFocus
    implicitHeight: 24
    implicitWidth: 224

    Accessible.name: text
    Accessible.role: Accessible.Heading

    contentItem: Item {
        SectionLabel {
            anchors.left: parent.left
            anchors.leftMargin: 10
            anchors.verticalCenter: parent.verticalCenter
            text: heading.text

            Accessible.ignored: true
        }
    }
}
