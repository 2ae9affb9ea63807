pragma ComponentBehavior: Bound

import QtQuick

// Says what a control does after the pointer has rested on it; a press silences it until the pointer comes
// back. The bubble is made only while it is wanted.
Loader {
    id: tip

    required property string text
    required property bool hovered
    required property bool pressed
    property bool silent: false
    readonly property bool wanted: hovered && !silent && text.length > 0

    anchors.fill: parent

    onHoveredChanged: {
        if (!hovered)
            silent = false;
    }
    onPressedChanged: {
        if (pressed)
            silent = true;
    }
    onWantedChanged: {
        if (wanted)
            setSource("HelpBubble.qml", { text: text });
        else
            source = "";
    }
}
