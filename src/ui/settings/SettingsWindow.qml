pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// Settings, over the window that they change.
T.Popup {
    id: settings

    property int page: 0
    readonly property list<string> titles: [qsTr("Look"), qsTr("Library"), qsTr("Preview"),
        qsTr("Integrations")]
    readonly property list<string> symbols: ["palette", "grid_view", "play_circle", "extension"]

    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside
    focus: true
    height: Math.min(660, parent.height - 64)
    modal: true
    padding: 1
    visible: true
    width: Math.min(720, parent.width - 64)
    x: Math.round((parent.width - width) / 2)
    y: Math.max(32, Math.round((parent.height - height) / 2) - 20)

    // The item that has the keyboard is the popup's own, which cannot be named where it is declared.
    onAboutToShow: contentItem.parent.Accessible.name = qsTr("Settings")

    T.Overlay.modal: Rectangle { color: Theme.scrim }

    background: Rectangle {
        border.color: Theme.popupBorder
        color: Theme.dark ? "#14141B" : "#F6F6FA"
        radius: Theme.panelRadius

        SoftShadow {
            anchors.fill: parent
            anchors.margins: -blur
            blur: 48
            color: Qt.rgba(0, 0, 0, Theme.dark ? 0.6 : 0.28)
            drop: 16
            radius: Theme.panelRadius
        }
    }
    contentItem: FocusScope {
        Label {
            anchors.horizontalCenter: parent.horizontalCenter
            font.weight: Font.Bold
            text: qsTr("Settings")
            y: 9

            Accessible.role: Accessible.Heading
        }
        IconButton {
            anchors.right: parent.right
            anchors.rightMargin: 9
            symbol: "close"
            text: qsTr("Close")
            y: 4

            onClicked: settings.close()
        }
        Rectangle {
            color: Theme.separator
            height: 1
            width: parent.width
            y: 33
        }
        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: Theme.space2
            y: 46

            Accessible.role: Accessible.PageTabList

            Repeater {
                model: settings.titles

                GlassTab {
                    required property int index
                    required property string modelData

                    checked: settings.page === index
                    focus: index === 0
                    symbol: settings.symbols[index]
                    text: modelData

                    onClicked: settings.page = index
                }
            }
        }
        EmptyState {
            anchors.centerIn: parent
            anchors.verticalCenterOffset: 20
            end: Theme.foreground(0.1)
            sentence: qsTr("There is nothing to set on this page yet.")
            start: Theme.foreground(0.2)
            symbol: settings.symbols[settings.page]
            title: settings.titles[settings.page]
            width: parent.width - 96
        }
    }
    enter: Transition {
        NumberAnimation {
            duration: Theme.panelTime
            easing.type: Easing.OutCubic
            from: 0
            property: "opacity"
            to: 1
        }
    }
    exit: Transition {
        NumberAnimation { duration: Theme.hoverTime; from: 1; property: "opacity"; to: 0 }
    }
}
