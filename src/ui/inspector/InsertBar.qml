pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// Places the asset on the timeline, and says where it will go.
Rectangle {
    id: bar

    required property bool insertable
    required property bool busy
    required property string destination

    signal insertAsked

    border.color: Theme.glassBorder
    color: Theme.glassFill
    implicitHeight: column.height + 2 * column.y
    radius: Theme.groupRadius

    Column {
        id: column

        spacing: Theme.space2
        width: parent.width - 2 * x
        x: Theme.space3
        y: Theme.space3

        T.Button {
            id: button

            activeFocusOnTab: true
            enabled: !bar.busy
            focusPolicy: Qt.TabFocus
            height: 38
            hoverEnabled: true
            opacity: enabled ? 1 : 0.6
            text: bar.busy ? qsTr("Inserting…") : qsTr("Insert at Playhead")
            visible: bar.insertable
            width: parent.width

            Accessible.description: bar.destination
            Accessible.name: text
            Accessible.role: Accessible.Button
            Accessible.onPressAction: button.press()

            Keys.onEnterPressed: press()
            Keys.onReturnPressed: press()

            onClicked: bar.insertAsked()

            function press(): void {
                if (enabled)
                    clicked();
            }

            background: GradientTile {
                direction: GradientTile.Across
                end: Theme.pink
                radius: Theme.controlRadius
                start: Theme.accent

                Rectangle {
                    anchors.fill: parent
                    color: button.down ? Qt.rgba(0, 0, 0, 0.14)
                                       : Qt.rgba(1, 1, 1, button.hovered && button.enabled ? 0.1 : 0)
                    radius: Theme.controlRadius
                }
                FocusRing {
                    anchors.margins: -4
                    radius: Theme.controlRadius + 4
                    shown: button.visualFocus
                }
            }
            contentItem: Item {
                Row {
                    anchors.centerIn: parent
                    spacing: Theme.space2

                    Icon {
                        anchors.verticalCenter: parent.verticalCenter
                        color: Theme.accentForeground
                        size: 17
                        text: bar.busy ? "autorenew" : "south_east"

                        RotationAnimation on rotation {
                            alwaysRunToEnd: true
                            duration: 900
                            from: 0
                            loops: Animation.Infinite
                            running: bar.busy && button.visible && !Theme.reducedMotion
                            to: 360
                        }
                    }
                    Label {
                        anchors.verticalCenter: parent.verticalCenter
                        color: Theme.accentForeground
                        font.weight: Font.Bold
                        text: button.text

                        Accessible.ignored: true
                    }
                }
            }
        }
        Label {
            color: Theme.textSecondary
            font.pixelSize: Theme.secondarySize
            horizontalAlignment: Text.AlignHCenter
            leftPadding: bar.insertable ? 0 : Theme.space4
            lineHeight: 1.15
            rightPadding: leftPadding
            text: bar.destination
            width: parent.width
            wrapMode: Text.Wrap
        }
    }
}
