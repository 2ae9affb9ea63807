pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The favorite button of the card under the pointer; one for the whole grid, because cards are made in
// numbers. The keyboard reaches the same through the menu command.
MouseArea {
    id: star

    required property AssetCard card
    readonly property bool favorite: card !== null && card.favorite

    signal toggled

    height: 28
    hoverEnabled: true
    parent: card?.surface ?? null
    visible: card !== null
    width: 28
    x: card ? card.width - card.inset - card.cornerOffset - width / 2 : 0
    y: card ? card.inset + card.cornerOffset - height / 2 : 0

    Accessible.name: favorite ? qsTr("Remove from Favorites") : qsTr("Add to Favorites")
    Accessible.role: Accessible.Button
    Accessible.onPressAction: star.toggled()

    onClicked: toggled()

    Rectangle {
        anchors.centerIn: parent
        color: Qt.rgba(0, 0, 0, star.containsMouse ? 0.75 : 0.5)
        height: 22
        radius: 11
        width: 22
    }
    Icon {
        anchors.centerIn: parent
        color: star.favorite ? Theme.amber : "white"
        text: star.favorite ? "star" : "star_border"
    }
}
