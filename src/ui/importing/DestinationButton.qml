pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// Shows where imports go and offers the other places.
T.Button {
    id: control

    activeFocusOnTab: true
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    implicitHeight: Theme.controlHeight
    leftPadding: 12
    rightPadding: 10
    text: ImportController.label

    Accessible.description: qsTr("Destination")
    Accessible.name: text
    Accessible.role: Accessible.Button
    Accessible.onPressAction: control.clicked()

    Keys.onDownPressed: clicked()
    Keys.onEnterPressed: clicked()
    Keys.onReturnPressed: clicked()

    onClicked: menu.open()

    background: ButtonPane {
        focused: control.visualFocus
        hovered: control.hovered
        pressed: control.down
        prominent: false
    }
    contentItem: Item {
        Label {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.rightMargin: 24
            anchors.verticalCenter: parent.verticalCenter
            font.weight: Font.Medium
            text: control.text

            Accessible.ignored: true
        }
        Icon {
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            text: "unfold_more"
        }
    }

    PopupHost {
        id: menu

        y: control.height + 4

        popup: DestinationMenu { implicitWidth: Math.max(240, control.width) }
    }
}
