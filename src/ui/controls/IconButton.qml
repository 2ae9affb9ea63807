pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// A bare symbol that can be pressed; its text is its help.
T.Button {
    id: control

    required property string symbol
    property int size: 18
    property color foreground: Theme.textSecondary

    activeFocusOnTab: true
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    implicitHeight: 26
    implicitWidth: 26
    opacity: enabled ? 1 : 0.42

    Accessible.checkable: checkable
    Accessible.checked: checked
    Accessible.name: text
    Accessible.role: Accessible.Button
    Accessible.onPressAction: control.press()

    Keys.onEnterPressed: press()
    Keys.onReturnPressed: press()

    function press(): void {
        if (enabled)
            clicked();
    }

    background: Rectangle {
        color: control.down ? Theme.controlFillPressed : control.hovered ? Theme.controlFill : "transparent"
        radius: 8

        FocusRing {
            anchors.margins: 0
            radius: 8
            shown: control.visualFocus
        }
    }
    contentItem: Item {
        Icon {
            anchors.centerIn: parent
            color: control.checked ? Theme.accent : control.hovered ? Theme.text : control.foreground
            size: control.size
            text: control.symbol
        }
    }

    HelpTip {
        hovered: control.hovered
        pressed: control.pressed
        text: control.text
    }
}
