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

    implicitHeight: column.implicitHeight + 2 * Theme.space3
    radius: 14
    color: Theme.glassFill
    border.color: Theme.glassBorder

    Column {
        id: column

        x: Theme.space3
        y: Theme.space3
        width: parent.width - 2 * Theme.space3
        spacing: Theme.space2

        T.Button {
            id: button

            width: parent.width
            height: 38
            visible: bar.insertable
            enabled: !bar.busy
            text: bar.busy ? qsTr("Inserting…") : qsTr("Insert at Playhead")
            opacity: enabled ? 1 : 0.6
            onClicked: bar.insertAsked()

            Accessible.role: Accessible.Button
            Accessible.name: text
            Accessible.description: bar.destination
            Accessible.onPressAction: button.clicked()

            background: Rectangle {
                radius: Theme.controlRadius
                gradient: Gradient {
                    orientation: Gradient.Horizontal

                    GradientStop {
                        position: 0
                        color: Theme.accent
                    }
                    GradientStop {
                        position: 1
                        color: Theme.pink
                    }
                }

                Rectangle {
                    anchors.fill: parent
                    radius: parent.radius
                    color: button.down ? "#26000000" : button.hovered ? "#1fffffff" : "transparent"
                }

                Rectangle {
                    anchors.fill: parent
                    anchors.margins: -3
                    radius: parent.radius + 3
                    visible: button.visualFocus
                    color: "transparent"
                    border.width: 2
                    border.color: Theme.accent
                }
            }
            contentItem: Item {
                Row {
                    anchors.centerIn: parent
                    spacing: Theme.space2

                    Text {
                        id: sign

                        anchors.verticalCenter: parent.verticalCenter
                        font.family: Theme.iconFamily
                        font.pixelSize: 16
                        color: Theme.accentInk
                        text: bar.busy ? "autorenew" : "south_east"

                        RotationAnimation on rotation {
                            running: bar.busy && button.visible && !Theme.reducedMotion
                            from: 0
                            to: 360
                            duration: 900
                            loops: Animation.Infinite
                            onStopped: sign.rotation = 0
                        }
                    }

                    Text {
                        anchors.verticalCenter: parent.verticalCenter
                        font.family: Theme.family
                        font.pixelSize: Theme.bodySize
                        font.weight: Font.Bold
                        color: Theme.accentInk
                        textFormat: Text.PlainText
                        text: button.text
                    }
                }
            }
        }

        Text {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            font.family: Theme.family
            font.pixelSize: Theme.secondarySize
            lineHeight: 1.15
            color: Theme.textSecondary
            textFormat: Text.PlainText
            text: bar.destination

            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
}
