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

    required property ThumbnailProvider source
    // The card can be seen; the keyboard acts on the grid.
    required property bool inView
    required property bool keyboard
    // Around the picture, and below it.
    required property int inset
    required property int footer
    required property int radius
    required property bool showName
    required property bool showBadge
    // A video follows the pointer.
    required property bool scrubs

    readonly property bool hovered: face.containsMouse
    // What lies on the card moves with it when its parent is this.
    readonly property Item surface: face
    // From the picture's upper right corner to the middle of the star, both ways.
    readonly property int cornerOffset: 14

    signal clicked(modifiers: int)
    signal insertAsked
    // The pointer pulls at it.
    signal dragAsked
    signal menuAsked(at: point)

    Accessible.role: Accessible.ListItem
    Accessible.name: name
    Accessible.description: kindLabel + (picture.duration.length > 0 ? ", " + picture.duration : "")
                            + (favorite ? qsTr(", favorite") : "")
    Accessible.selectable: true
    Accessible.selected: selected
    Accessible.focusable: true
    Accessible.focused: focused && keyboard
    Accessible.onPressAction: card.clicked(Qt.NoModifier)

    MouseArea {
        id: face

        width: card.width
        height: card.height
        y: card.hovered ? -2 : 0
        // A mouse drags the card; a finger scrolls the grid.
        property bool draggable: false
        property bool dragged: false
        property point start

        acceptedButtons: Qt.LeftButton | Qt.RightButton
        hoverEnabled: true
        preventStealing: draggable
        onPressed: (mouse) => {
            draggable = mouse.button === Qt.LeftButton && mouse.source === Qt.MouseEventNotSynthesized;
            dragged = false;
            start = Qt.point(mouse.x, mouse.y);
            if (mouse.button === Qt.RightButton)
                card.menuAsked(start);
        }
        onPositionChanged: (mouse) => {
            if (!pressed || !draggable || dragged)
                return;
            dragged = Math.abs(mouse.x - start.x) + Math.abs(mouse.y - start.y) >= 10;
            if (dragged)
                card.dragAsked();
        }
        onClicked: (mouse) => {
            if (mouse.button === Qt.LeftButton && !dragged)
                card.clicked(mouse.modifiers);
        }
        onDoubleClicked: (mouse) => {
            if (mouse.button === Qt.LeftButton && mouse.modifiers === Qt.NoModifier)
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
            color: Qt.rgba(1, 1, 1, Theme.glassFill.a + (card.hovered ? 0.045 : 0))
            border.color: card.hovered ? Theme.popupBorder : Theme.glassBorder
        }

        AssetPicture {
            id: picture

            // Where the pointer is on the picture, 0 to 1.
            readonly property real pointer: Math.max(0, Math.min(1, (face.mouseX - x) / width))
            readonly property bool scrubbed: shown && card.hovered && card.scrubs && !face.pressed
                                             && card.kind === Vocabulary.AssetKind.Video

            x: card.inset
            y: card.inset
            width: card.width - 2 * card.inset
            height: card.height - card.inset - card.footer
            source: card.source
            url: card.url
            kind: card.kind
            active: card.inView
            radius: Math.max(0, card.radius - 6)
            scrub: scrubbed ? pointer : -1
        }

        Rectangle {
            x: picture.x + Math.round(picture.pointer * (picture.width - width))
            y: picture.y
            width: 2
            height: picture.height
            visible: picture.scrubbed
            color: "#d9ffffff"
        }

        Rectangle {
            anchors.right: picture.right
            anchors.bottom: picture.bottom
            anchors.margins: 6
            visible: picture.duration.length > 0
            width: durationText.width + 10
            height: 16
            radius: Theme.badgeRadius
            color: "#8c000000"

            Text {
                id: durationText

                x: 5
                height: parent.height
                verticalAlignment: Text.AlignVCenter
                font.family: Theme.family
                font.pixelSize: 10
                font.weight: Font.Bold
                renderType: Text.NativeRendering
                color: "white"
                textFormat: Text.PlainText
                text: picture.duration
            }
        }

        Rectangle {
            x: card.inset + 6
            y: card.inset + 6
            visible: card.showBadge
            width: badgeText.x + badgeText.width + 6
            height: 16
            radius: Theme.badgeRadius
            color: "#8c000000"

            Text {
                color: "white"
                font.family: Theme.iconFamily
                font.pixelSize: 12
                height: parent.height
                renderType: Text.NativeRendering
                text: picture.kindIcon
                textFormat: Text.PlainText
                verticalAlignment: Text.AlignVCenter
                x: 5
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

        Text {
            anchors.horizontalCenter: picture.right
            anchors.horizontalCenterOffset: -card.cornerOffset
            anchors.verticalCenter: picture.top
            anchors.verticalCenterOffset: card.cornerOffset
            color: Theme.amber
            font.family: Theme.iconFamily
            font.pixelSize: 16
            renderType: Text.NativeRendering
            text: "star"
            textFormat: Text.PlainText
            visible: card.favorite
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
            color: Theme.accent
            height: card.height + 2
            lineWidth: card.selected ? 2 : 1
            radius: card.radius + 1
            reach: 14
            strength: !card.selected ? 0 : card.focused ? 0.6 : 0.25
            visible: card.selected || card.focused
            width: card.width + 2
            x: -1
            y: -1
        }
    }
}
