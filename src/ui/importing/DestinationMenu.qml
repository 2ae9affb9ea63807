pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// The places that an import can go to; a long list, of which only what shows is made.
Item {
    id: place

    required property ImportController desk

    T.Popup {
        id: popup

        function choose(index: int): void {
            place.desk.choose(index);
            close();
        }

        closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside
        focus: true
        height: Math.min(340, list.contentHeight + 12)
        margins: 8
        padding: 6
        visible: true
        width: Math.max(240, place.width)

        onAboutToShow: contentItem.parent.Accessible.name = qsTr("Destination")
        onClosed: (place.parent as PopupLoader).release()
        onOpened: list.positionViewAtIndex(list.currentIndex, ListView.Center)

        background: Rectangle {
            border.color: Theme.popupBorder
            color: Theme.popup
            radius: 12

            SoftShadow {
                anchors.fill: parent
                anchors.margins: -blur
                blur: 22
                color: Qt.rgba(0, 0, 0, Theme.dark ? 0.5 : 0.2)
                drop: 6
                radius: 12
            }
        }

        ListView {
            id: list

            anchors.fill: parent
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            currentIndex: place.desk.current
            focus: true
            highlightMoveDuration: 0
            keyNavigationEnabled: true
            model: place.desk.choices

            Accessible.name: qsTr("Destination")
            Accessible.role: Accessible.PopupMenu

            Keys.onEnterPressed: popup.choose(currentIndex)
            Keys.onReturnPressed: popup.choose(currentIndex)
            Keys.onSpacePressed: popup.choose(currentIndex)

            T.ScrollBar.vertical: ThinScrollBar {}

            delegate: GlassMenuItem {
                required property int index
                required property string modelData
                // The spaces before the name say how deep the folder lies.
                readonly property int depth: Math.floor(modelData.search(/\S|$/) / 4)

                checkable: true
                checked: index === place.desk.current
                highlighted: ListView.isCurrentItem
                leftPadding: 26
                symbol: index === 0 ? "" : "folder"
                symbolIndent: 16 * depth
                text: modelData.trim()
                width: ListView.view.width

                onHoveredChanged: {
                    if (hovered)
                        list.currentIndex = index;
                }
                onTriggered: popup.choose(index)
            }
        }
    }
}
