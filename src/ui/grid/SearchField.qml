pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// A text field to search with; what is typed shows at once in `text`.
T.TextField {
    id: control

    // With all of its placeholder.
    readonly property real wholeWidth: leftPadding + Math.ceil(placeholder.implicitWidth) + 11

    activeFocusOnTab: true
    color: Theme.text
    font.family: Theme.family
    font.pixelSize: Theme.bodySize
    hoverEnabled: true
    implicitHeight: Theme.controlHeight
    implicitWidth: 200
    leftPadding: 35
    placeholderTextColor: Theme.textTertiary
    renderType: Text.NativeRendering
    rightPadding: clearButton.visible ? 30 : 10
    selectByMouse: true
    selectedTextColor: Theme.accentForeground
    selectionColor: Theme.accent
    verticalAlignment: Text.AlignVCenter

    Accessible.name: placeholderText
    Accessible.role: Accessible.EditableText
    Accessible.searchEdit: true

    Keys.onEscapePressed: event => {
        event.accepted = text.length > 0;
        clear();
    }

    background: ControlGlass {
        border.color: control.activeFocus ? Theme.accent : Theme.controlBorder
        hovered: control.hovered
    }

    Icon {
        anchors.left: parent.left
        anchors.leftMargin: 12
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.textSecondary
        text: "search"
    }
    Label {
        id: placeholder

        anchors.fill: parent
        anchors.leftMargin: control.leftPadding
        anchors.rightMargin: control.rightPadding
        color: control.placeholderTextColor
        text: control.placeholderText
        verticalAlignment: Text.AlignVCenter
        visible: control.length === 0 && control.preeditText.length === 0

        Accessible.ignored: true
    }
    IconButton {
        id: clearButton

        anchors.right: parent.right
        anchors.rightMargin: 3
        anchors.verticalCenter: parent.verticalCenter
        implicitHeight: 24
        implicitWidth: 24
        size: 15
        symbol: "cancel"
        text: qsTr("Clear")
        visible: control.length > 0

        onClicked: {
            control.clear();
            control.forceActiveFocus();
        }
    }
}
