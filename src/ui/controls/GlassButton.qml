pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// A button with a text, a symbol or both; the prominent one has the accent.
T.Button {
    id: control

    property string symbol: ""
    property bool prominent: false
    property bool destructive: false
    // Leaves the text to the help tip and to assistive tools.
    property bool compact: false
    property string helpText: ""
    // With its text, whether or not it shows now.
    readonly property real fullWidth: Math.ceil(metrics.width) + (symbol ? 11 + 16 + 7 : 12) + 12
    readonly property int compactWidth: 33
    readonly property color foreground: prominent ? Theme.accentForeground : destructive ? Theme.destructive : Theme.text

    activeFocusOnTab: true
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    implicitHeight: Theme.controlHeight
    implicitWidth: compact ? compactWidth : fullWidth
    leftPadding: compact ? Math.round((width - 16) / 2) : symbol ? 11 : 12
    opacity: enabled ? 1 : 0.42
    rightPadding: compact ? 0 : 12

    Accessible.description: helpText
    Accessible.name: text || helpText
    Accessible.role: Accessible.Button
    Accessible.onPressAction: control.press()

    Keys.onEnterPressed: press()
    Keys.onReturnPressed: press()

    function press(): void {
        if (enabled)
            clicked();
    }

    TextMetrics {
        id: metrics

        font.family: Theme.family
        font.pixelSize: Theme.bodySize
        font.weight: Font.DemiBold
        text: control.text
    }

    background: ButtonPane {
        focused: control.visualFocus
        hovered: control.hovered
        pressed: control.down
        prominent: control.prominent
    }
    contentItem: ButtonFace {
        foreground: control.foreground
        symbol: control.symbol
        text: control.compact ? "" : control.text
    }

    HelpTip {
        hovered: control.hovered
        pressed: control.pressed
        text: control.helpText || (control.compact ? control.text : "")
    }
}
