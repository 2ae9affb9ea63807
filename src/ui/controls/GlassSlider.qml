pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// A horizontal slider named by `label`.
T.Slider {
    id: control

    required property string label
    required property real shown
    property bool complete: false

    // The user wants another value than the one shown: by pointer, keys or assistive tools.
    signal chosen(real value)

    activeFocusOnTab: true
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    implicitHeight: 22
    implicitWidth: 90
    value: shown

    onValueChanged: {
        if (complete && value !== Math.max(from, Math.min(to, shown)))
            chosen(value);
    }
    Component.onCompleted: complete = true

    Accessible.name: label
    Accessible.role: Accessible.Slider
    Accessible.onDecreaseAction: control.decrease()
    Accessible.onIncreaseAction: control.increase()

    background: Rectangle {
        color: Theme.track
        height: 4
        radius: 2
        width: control.availableWidth
        x: control.leftPadding
        y: Math.round(control.topPadding + (control.availableHeight - height) / 2)

        Rectangle {
            color: Theme.accent
            height: parent.height
            radius: 2
            width: control.handle.x + control.handle.width / 2
        }
    }
    handle: Rectangle {
        border.color: Qt.rgba(0, 0, 0, 0.18)
        border.width: Theme.dark ? 0 : 1
        color: "white"
        height: 14
        radius: 7
        width: 14
        x: control.leftPadding + control.visualPosition * (control.availableWidth - width)
        y: Math.round(control.topPadding + (control.availableHeight - height) / 2)

        FocusRing {
            radius: 9
            shown: control.visualFocus
        }
    }
}
