pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// Whether an asset is a favorite, and the press that changes it.
T.AbstractButton {
    id: button

    signal toggleAsked

    width: 32
    height: 32
    text: checked ? qsTr("Remove from Favorites") : qsTr("Add to Favorites")
    onClicked: toggleAsked()

    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.onPressAction: button.clicked()

    background: Rectangle {
        radius: Theme.controlRadius
        color: button.hovered || button.down ? Theme.controlFill : "transparent"
        border.width: button.visualFocus ? 2 : 0
        border.color: Theme.accent
    }
    contentItem: Text {
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        font.family: Theme.iconFamily
        font.pixelSize: 20
        color: button.checked ? Theme.amber : Theme.textSecondary
        text: button.checked ? "star" : "star_border"
    }
}
