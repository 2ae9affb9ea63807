pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// One asset of the grid. It shows what it is given and says what was done to it.
SelectableItem {
    id: card

    required property location url
    required property string name
    required property int kind
    required property string kindLabel
    required property bool focused
    required property bool favorite
    required selected

    required property PictureSource source
    // The card can be seen; the keyboard acts on the grid.
    required property bool inView
    required property bool keyboard
    // Around the picture, and below it.
    required property int inset
    required property int footer
    required property int radius
    required property bool showName
    required property bool showBadge

    signal clicked(modifiers: int)
    signal insertAsked
    signal favoriteToggled

    Accessible.role: Accessible.ListItem
    Accessible.name: name
    Accessible.description: favorite ? qsTr("%1, favorite").arg(kindLabel) : kindLabel
    Accessible.selectable: true
    Accessible.selected: selected
    Accessible.focusable: true
    Accessible.focused: focused && keyboard
    Accessible.onPressAction: card.clicked(Qt.NoModifier)

    MouseArea {
        id: face

        width: card.width
        height: card.height
        y: containsMouse ? -2 : 0
        hoverEnabled: true
        onClicked: (mouse) => card.clicked(mouse.modifiers)
        onDoubleClicked: (mouse) => {
            if (mouse.modifiers === Qt.NoModifier)
                card.insertAsked();
        }

        Behavior on y {
            NumberAnimation {
                duration: Theme.hoverTime
                easing.type: Easing.OutQuad
            }
        }

        Rectangle {
            anchors.fill: parent
            radius: card.radius
            color: Qt.rgba(1, 1, 1, Theme.glassFill.a + (face.containsMouse ? 0.045 : 0))
            border.color: face.containsMouse ? Theme.popupBorder : Theme.glassBorder
        }

        ThumbnailItem {
            id: picture

            x: card.inset
            y: card.inset
            width: card.width - 2 * card.inset
            height: card.height - card.inset - card.footer
            source: card.source
            url: card.url
            kind: card.kind
            active: card.inView
            radius: Math.max(0, card.radius - 6)
            iconFamily: Theme.iconFamily
        }

        Rectangle {
            x: card.inset + 6
            y: card.inset + 6
            visible: card.showBadge
            width: badgeText.x + badgeText.width + 6
            height: 16
            radius: Theme.badgeRadius
            color: "#8c000000"

            Icon {
                x: 5
                height: parent.height
                color: "white"
                size: 12
                text: picture.kindIcon
            }

            Text {
                id: badgeText

                x: 20
                height: parent.height
                verticalAlignment: Text.AlignVCenter
                font.family: Theme.family
                font.pixelSize: 10
                font.weight: Font.Bold
                font.letterSpacing: 0.3
                font.capitalization: Font.AllUppercase
                renderType: Text.NativeRendering
                color: "white"
                textFormat: Text.PlainText
                text: card.kindLabel
            }
        }

        MouseArea {
            id: star

            anchors.right: picture.right
            anchors.top: picture.top
            width: 28
            height: 28
            visible: card.favorite || face.containsMouse
            hoverEnabled: true
            onClicked: card.favoriteToggled()

            Accessible.role: Accessible.Button
            Accessible.name: card.favorite ? qsTr("Remove from Favorites") : qsTr("Add to Favorites")
            Accessible.onPressAction: card.favoriteToggled()

            Rectangle {
                anchors.centerIn: parent
                width: 22
                height: 22
                radius: 11
                visible: face.containsMouse
                color: star.containsMouse ? "#b3000000" : "#73000000"
            }

            Text {
                anchors.centerIn: parent
                font.family: Theme.iconFamily
                font.pixelSize: 16
                color: card.favorite ? Theme.amber : "white"
                text: card.favorite ? "star" : "star_border"
            }
        }

        Text {
            x: card.inset + 4
            y: picture.y + picture.height
            width: card.width - 2 * x
            height: card.footer - 2
            visible: card.showName
            verticalAlignment: Text.AlignVCenter
            elide: Text.ElideRight
            font.family: Theme.family
            font.pixelSize: Theme.bodySize
            font.weight: Font.Medium
            renderType: Text.NativeRendering
            color: Theme.text
            textFormat: Text.PlainText
            text: card.name
        }

        SelectionFrame {
            x: -1
            y: -1
            width: card.width + 2
            height: card.height + 2
            visible: card.selected || card.focused
            radius: card.radius + 1
            reach: 14
            color: Theme.accent
            lineWidth: card.selected ? 2 : 1
            strength: !card.selected ? 0 : card.focused ? 0.6 : 0.25
        }
    }
}
