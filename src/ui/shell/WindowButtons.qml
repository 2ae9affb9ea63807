pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// Close, minimize and maximize, in the program's own title area.
Row {
    id: buttons

    required property Window window
    readonly property bool maximized: window.visibility === Window.Maximized

    component Dot: T.Button {
        id: dot

        required property string symbol

        activeFocusOnTab: true
        focusPolicy: Qt.TabFocus
        hoverEnabled: true
        implicitHeight: 26
        implicitWidth: 18

        Accessible.name: text
        Accessible.role: Accessible.Button
        Accessible.onPressAction: dot.clicked()

        Keys.onEnterPressed: clicked()
        Keys.onReturnPressed: clicked()

        contentItem: Item {
            Rectangle {
                anchors.centerIn: parent
                color: Theme.foreground(dot.down ? 0.5 : dot.hovered ? 0.4 : Theme.dark ? 0.28 : 0.2)
                height: 12
                radius: 6
                width: 12

                FocusRing {
                    radius: 8
                    shown: dot.visualFocus
                }
            }
            Icon {
                anchors.centerIn: parent
                color: Theme.windowBase
                font.weight: Font.Bold
                size: 10
                text: dot.symbol
                visible: hover.hovered || dot.visualFocus
            }
        }

        HelpTip {
            hovered: dot.hovered
            pressed: dot.pressed
            text: dot.text
        }
    }

    HoverHandler { id: hover }

    Dot {
        symbol: "close"
        text: qsTr("Close")

        onClicked: buttons.window.close()
    }
    Dot {
        symbol: "remove"
        text: qsTr("Minimize")

        onClicked: buttons.window.showMinimized()
    }
    Dot {
        symbol: buttons.maximized ? "close_fullscreen" : "open_in_full"
        text: buttons.maximized ? qsTr("Restore") : qsTr("Maximize")

        onClicked: buttons.maximized ? buttons.window.showNormal() : buttons.window.showMaximized()
    }
}
