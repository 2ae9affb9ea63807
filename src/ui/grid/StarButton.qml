pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// Whether an asset is a favorite, and the press that changes it.
T.Button {
    id: control

    required property bool favorite

    activeFocusOnTab: true
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    implicitHeight: 32
    implicitWidth: 32
    text: favorite ? qsTr("Remove from Favorites") : qsTr("Add to Favorites")

    Accessible.name: text
    Accessible.role: Accessible.Button
    Accessible.onPressAction: control.clicked()

    Keys.onEnterPressed: clicked()
    Keys.onReturnPressed: clicked()

    background: Rectangle {
        color: control.down ? Theme.controlFillPressed : control.hovered ? Theme.controlFill : "transparent"
        radius: Theme.controlRadius

        FocusRing {
            anchors.margins: 0
            radius: Theme.controlRadius
            shown: control.visualFocus
        }
    }
    contentItem: Item {
        Icon {
            anchors.centerIn: parent
            color: control.favorite ? Theme.amber : Theme.textSecondary
            size: 20
            text: control.favorite ? "star" : "star_border"
        }
    }

    HelpTip {
        hovered: control.hovered
        pressed: control.pressed
        text: control.text
    }
}
