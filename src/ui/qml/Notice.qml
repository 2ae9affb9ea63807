pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Says in one sentence why there is nothing to see here.
Column {
    id: state

    required property string symbol
    required property color start
    required property color end
    required property string sentence
    property bool gradient: true

    spacing: 14

    IconTile {
        anchors.horizontalCenter: parent.horizontalCenter
        end: state.end
        gradient: state.gradient
        height: 62
        radius: 16
        start: state.start
        symbol: state.symbol
        symbolSize: 32
        width: 62
    }
    Label {
        anchors.horizontalCenter: parent.horizontalCenter
        color: Theme.textSecondary
        horizontalAlignment: Text.AlignHCenter
        text: state.sentence
        width: Math.min(implicitWidth, state.width)
        wrapMode: Text.Wrap
    }
}
