pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The focused asset in large, and what can be done with it.
Item {
    id: inspector

    readonly property int margin: 15

    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Preview")

    SelectionInfo {
        id: selection
    }

    ThumbnailSource {
        id: thumbnails
    }

    Rectangle {
        anchors.fill: parent
        radius: Theme.panelRadius
        color: Theme.panelFill
        border.color: Theme.glassBorder
    }

    EmptyState {
        anchors.centerIn: parent
        width: 240
        visible: !selection.present
        icon: "touch_app"
        tintStart: Theme.accent
        tintEnd: Theme.pink
        title: qsTr("Nothing selected")
        sentence: qsTr("Choose an asset to see it here and place it on your timeline.")
    }

    Item {
        anchors.fill: parent
        anchors.margins: inspector.margin
        visible: selection.present

        Text {
            id: name

            width: favorite.x - Theme.space2
            elide: Text.ElideRight
            font.family: Theme.family
            font.pixelSize: Theme.headingSize
            font.weight: Font.Bold
            color: Theme.text
            textFormat: Text.PlainText
            text: selection.name

            Accessible.role: Accessible.Heading
            Accessible.name: text
        }

        Text {
            id: place

            y: name.height + 1
            width: name.width
            elide: Text.ElideMiddle
            font.family: Theme.family
            font.pixelSize: Theme.secondarySize
            color: Theme.textSecondary
            textFormat: Text.PlainText
            text: selection.place

            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }

        StarButton {
            id: favorite

            anchors.right: parent.right
            anchors.rightMargin: -6
            y: 0
            checked: selection.favorite
            onToggleAsked: selection.toggleFavorite()
        }

        Rectangle {
            anchors.fill: picture
            radius: picture.radius
            color: "black"
        }

        ThumbnailItem {
            id: picture

            y: 44
            width: parent.width
            height: Math.round(width * 9 / 16)
            radius: Theme.controlRadius
            source: thumbnails
            url: selection.url
            kind: selection.kind
            active: selection.present
            iconFamily: Theme.iconFamily

            Accessible.role: Accessible.Graphic
            Accessible.name: qsTr("Preview of %1").arg(selection.name)
        }

        InsertBar {
            anchors.bottom: parent.bottom
            width: parent.width
            insertable: selection.insertable
            busy: Inserter.busy
            destination: selection.destination
            onInsertAsked: Inserter.insertSelected()
        }
    }
}
