pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// A text field for the name of a file or folder.
T.TextField {
    id: control

    required property string label

    activeFocusOnTab: true
    color: Theme.text
    font.family: Theme.family
    font.pixelSize: Theme.bodySize
    hoverEnabled: true
    implicitHeight: Theme.controlHeight + 2
    leftPadding: 11
    placeholderText: label
    placeholderTextColor: Theme.textTertiary
    renderType: Text.NativeRendering
    rightPadding: 11
    selectByMouse: true
    selectedTextColor: Theme.accentForeground
    selectionColor: Theme.accent
    verticalAlignment: Text.AlignVCenter

    Accessible.name: label
    Accessible.role: Accessible.EditableText

    background: ControlGlass {
        border.color: control.activeFocus ? Theme.accent : Theme.controlBorder
        hovered: control.hovered
    }

    Label {
        anchors.fill: parent
        anchors.leftMargin: control.leftPadding
        color: control.placeholderTextColor
        text: control.label
        verticalAlignment: Text.AlignVCenter
        visible: control.length === 0 && control.preeditText.length === 0

        Accessible.ignored: true
    }
}
