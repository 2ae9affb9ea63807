pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// Something that is on or off.
T.Switch {
    id: control

    // What the program says; `asked` is the user's request to change it.
    required property bool on

    signal asked(on: bool)

    activeFocusOnTab: true
    checked: on
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    implicitHeight: 22
    implicitWidth: 38

    Accessible.checkable: true
    Accessible.checked: on
    Accessible.name: text
    Accessible.role: Accessible.CheckBox
    Accessible.onPressAction: control.asked(!control.on)
    Accessible.onToggleAction: control.asked(!control.on)

    Keys.onEnterPressed: asked(!on)
    Keys.onReturnPressed: asked(!on)

    onToggled: {
        asked(checked);
        checked = Qt.binding(() => on);
    }

    contentItem: Item {}
    indicator: Rectangle {
        color: control.on ? Theme.accent : Theme.track
        height: 22
        radius: 11
        width: 38

        Behavior on color {
            ColorAnimation { duration: Theme.hoverTime }
        }

        Rectangle {
            color: "white"
            height: 18
            radius: 9
            width: 18
            x: control.on ? 18 : 2
            y: 2

            Behavior on x {
                NumberAnimation { duration: Theme.hoverTime; easing.type: Easing.OutCubic }
            }
        }
        FocusRing {
            radius: 13
            shown: control.visualFocus
        }
    }
}
