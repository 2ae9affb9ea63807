pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The focused asset in large, and what can be done with it.
GlassPanel {
    id: inspector

    readonly property int margin: 15

    Accessible.name: qsTr("Preview")
    Accessible.role: Accessible.Pane

    EmptyState {
        anchors.centerIn: parent
        end: Theme.pink
        sentence: qsTr("Choose an asset to see it here and place it on your timeline.")
        start: Theme.accent
        symbol: "touch_app"
        title: qsTr("Nothing selected")
        visible: !SelectionInfo.present
        width: 250
    }
    Item {
        anchors.fill: parent
        anchors.margins: inspector.margin
        visible: SelectionInfo.present

        Label {
            id: name

            anchors.left: parent.left
            anchors.right: favorite.left
            anchors.rightMargin: Theme.space2
            font.pixelSize: Theme.headingSize
            font.weight: Font.Bold
            text: SelectionInfo.name

            Accessible.role: Accessible.Heading
        }
        Label {
            anchors.left: parent.left
            anchors.right: name.right
            anchors.top: name.bottom
            color: Theme.textSecondary
            elide: Text.ElideMiddle
            font.pixelSize: Theme.secondarySize
            text: SelectionInfo.place
        }
        StarButton {
            id: favorite

            anchors.right: parent.right
            anchors.rightMargin: -6
            favorite: SelectionInfo.favorite

            onClicked: AssetActions.toggleFavoriteOfFocused()
        }
        AssetPicture {
            id: picture

            active: SelectionInfo.present
            height: Math.round(width * 9 / 16)
            kind: SelectionInfo.kind
            radius: Theme.controlRadius
            source: VaultThumbnails
            url: SelectionInfo.url
            whole: true
            width: parent.width
            y: 44

            Accessible.name: qsTr("Preview of %1").arg(SelectionInfo.name)
            Accessible.role: Accessible.Graphic
        }
        Flickable {
            anchors.bottom: insertBar.top
            anchors.bottomMargin: Theme.space3
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: picture.bottom
            anchors.topMargin: Theme.space4
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            contentHeight: details.height

            MetadataView {
                id: details

                width: parent.width
            }
        }
        InsertBar {
            id: insertBar

            anchors.bottom: parent.bottom
            busy: Inserter.busy
            destination: SelectionInfo.destination
            insertable: SelectionInfo.insertable
            width: parent.width

            onInsertAsked: Inserter.insertSelected()
        }
    }
}
