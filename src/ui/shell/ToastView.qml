pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// A short message, while there is one.
Item {
    id: toast

    required property string text
    required property bool ok
    // The text of the button; empty for none.
    property string action: ""
    readonly property bool shown: text.length > 0
    property real widest: 640
    // Stays while the toast fades away.
    property string lastText: ""
    property bool lastOk: true

    signal acted

    height: Math.max(40, label.height + 20)
    opacity: shown ? 1 : 0
    visible: opacity > 0
    width: label.width + 66 + (button.visible ? button.width - 4 : 0)

    Accessible.name: lastText
    Accessible.role: Accessible.AlertMessage

    onOkChanged: remember()
    onTextChanged: remember()

    function remember(): void {
        if (text.length === 0)
            return;
        lastText = text;
        lastOk = ok;
    }

    Component.onCompleted: remember()

    Behavior on opacity {
        NumberAnimation { duration: Theme.panelTime; easing.type: Easing.OutCubic }
    }

    Rectangle {
        border.color: Theme.popupBorder
        color: Theme.popup
        height: parent.height
        radius: 20
        width: parent.width
        y: toast.shown ? 0 : 16

        Behavior on y {
            NumberAnimation { duration: Theme.panelTime; easing.type: Easing.OutCubic }
        }

        SoftShadow {
            anchors.fill: parent
            anchors.margins: -blur
            blur: 26
            color: Qt.rgba(0, 0, 0, Theme.dark ? 0.55 : 0.2)
            drop: 8
            radius: 20
        }
        Icon {
            anchors.verticalCenter: parent.verticalCenter
            color: toast.lastOk ? Theme.success : Theme.warning
            size: 20
            text: toast.lastOk ? "check_circle" : "warning"
            x: 15
        }
        Label {
            id: label

            anchors.verticalCenter: parent.verticalCenter
            font.weight: Font.Medium
            text: toast.lastText
            width: Math.min(implicitWidth, toast.widest - 66 - (button.visible ? button.width : 0))
            wrapMode: Text.Wrap
            x: 43

            Accessible.ignored: true
        }
        GlassButton {
            id: button

            anchors.right: parent.right
            anchors.rightMargin: 6
            anchors.verticalCenter: parent.verticalCenter
            implicitHeight: 28
            text: toast.action
            visible: toast.shown && text.length > 0

            Accessible.ignored: !visible

            onClicked: toast.acted()
        }
    }
}
