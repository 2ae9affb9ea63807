pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// A button's symbol and text, side by side.
Row {
    id: face

    required property string symbol
    required property string text
    required property color foreground

    spacing: 7

    Icon {
        anchors.verticalCenter: parent.verticalCenter
        color: face.foreground
        text: face.symbol
        visible: text.length > 0
    }
    Label {
        anchors.verticalCenter: parent.verticalCenter
        color: face.foreground
        font.weight: Font.DemiBold
        text: face.text
        visible: text.length > 0

        Accessible.ignored: true
    }
}
