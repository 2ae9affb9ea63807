pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// Where files from outside come into the vault.
Page {
    id: page

    subtitle: qsTr("Add overlays, LUTs and sound effects to your vault.")
    title: qsTr("Import")

    Flickable {
        id: scroll

        anchors.fill: parent
        anchors.topMargin: 62 + page.push
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        contentHeight: column.height + 16

        T.ScrollBar.vertical: ThinScrollBar {}

        Column {
            id: column

            spacing: 14
            width: parent.width - 12
            x: 6
            y: 4

            ImportDropZone {
                width: parent.width
            }
            Grid {
                id: settings

                readonly property real cell: columns === 2 ? (width - spacing) / 2 : width

                columns: width >= 520 ? 2 : 1
                spacing: 14
                width: parent.width

                GlassPanel {
                    height: 81
                    width: settings.cell

                    SectionLabel {
                        text: qsTr("Destination")
                        x: 15
                        y: 14
                    }
                    DestinationButton {
                                width: parent.width - 30
                        x: 15
                        y: 36
                    }
                }
                GlassPanel {
                    height: 81
                    width: settings.cell

                    Label {
                        anchors.left: parent.left
                        anchors.leftMargin: 15
                        anchors.right: moveSwitch.left
                        anchors.rightMargin: Theme.space2
                        font.weight: Font.DemiBold
                        text: moveSwitch.text
                        y: 26

                        Accessible.ignored: true
                    }
                    Label {
                        anchors.left: parent.left
                        anchors.leftMargin: 15
                        anchors.right: moveSwitch.left
                        anchors.rightMargin: Theme.space2
                        color: Theme.textSecondary
                        font.pixelSize: Theme.secondarySize
                        text: qsTr("Removes the originals after importing")
                        y: 43
                    }
                    GlassSwitch {
                        id: moveSwitch

                        anchors.right: parent.right
                        anchors.rightMargin: 14
                        anchors.verticalCenter: parent.verticalCenter
                        on: Prefs.importMove
                        text: qsTr("Move instead of copy")

                        onAsked: on => Prefs.importMove = on
                    }
                }
            }
            SectionLabel {
                text: qsTr("Just imported")
                visible: RecentImportsModel.count > 0

                Accessible.ignored: !visible
            }
            GridView {
                id: cards

                activeFocusOnTab: count > 0
                cellHeight: 108
                cellWidth: 120
                height: Math.max(0, contentHeight - 10)
                interactive: false
                keyNavigationEnabled: true
                model: RecentImportsModel
                visible: count > 0
                width: parent.width + 10

                Accessible.name: qsTr("Just imported")
                Accessible.role: Accessible.List

                Keys.onEnterPressed: RecentImportsModel.focus(currentIndex)
                Keys.onReturnPressed: RecentImportsModel.focus(currentIndex)
                Keys.onSpacePressed: RecentImportsModel.focus(currentIndex)

                delegate: ImportCard {
                    required property int index

                    current: cards.activeFocus && GridView.isCurrentItem
                    source: VaultThumbnails

                    onActivated: {
                        cards.currentIndex = index;
                        RecentImportsModel.focus(index);
                    }
                }
            }
            AutoImportCard { width: parent.width }
        }
    }
}
