pragma ComponentBehavior: Bound

import QtQuick

// Says what a control does after the pointer has rested on it. The bubble is made only while it is wanted.
Loader {
    required property string text
    required property bool wanted

    anchors.fill: parent

    onWantedChanged: {
        if (wanted && text.length > 0)
            setSource("HelpBubble.qml", { text: text });
        else
            source = "";
    }
}
