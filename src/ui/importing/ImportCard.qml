pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// A file that was just imported.
Item {
    id: card

    required property location url
    required property string name
    required property int kind
    required property bool present
    required property bool current
    required property ThumbnailProvider source

    signal activated

    height: 98
    width: 110

    Accessible.focusable: true
    Accessible.focused: current
    Accessible.name: name
    Accessible.role: Accessible.ListItem
    Accessible.onPressAction: card.activated()

    HoverHandler { id: hover }
    TapHandler { onTapped: card.activated() }

    Rectangle {
        anchors.fill: parent
        border.color: hover.hovered ? Theme.popupBorder : Theme.glassBorder
        color: Theme.glassFill
        radius: Theme.groupRadius

        FocusRing {
            anchors.margins: 0
            radius: Theme.groupRadius
            shown: card.current
        }
    }
    AssetPicture {
        active: card.present
        height: 60
        kind: card.kind
        radius: 8
        source: card.source
        url: card.url
        width: 96
        x: 7
        y: 7
    }
    Label {
        font.pixelSize: Theme.secondarySize
        font.weight: Font.Medium
        text: card.name
        width: parent.width - 22
        x: 11
        y: 74

        Accessible.ignored: true
    }
}
