pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Says what a control does after the pointer has rested on it; a press silences it until the pointer comes
// back.
OnDemand {
    id: tip

    required property string text
    required property bool hovered
    required property bool pressed
    property bool silent: false

    anchors.fill: parent
    wanted: hovered && !silent && text.length > 0

    content: HelpBubble {
        anchors.fill: parent
        text: tip.text
    }

    onHoveredChanged: {
        if (!hovered)
            silent = false;
    }
    onPressedChanged: {
        if (pressed)
            silent = true;
    }
}
