pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// A symbol on a colored tile; one flat tone when gradients are not wanted.
Item {
    id: tile

    required property string symbol
    required property color start
    required property color end
    required property bool gradient
    property int symbolSize: Math.round(height * 0.62)
    property real radius: height * 0.27

    implicitHeight: 22
    implicitWidth: 22

    GradientTile {
        anchors.fill: parent
        end: tile.gradient ? tile.end : tile.start
        radius: tile.radius
        start: tile.start
    }
    Icon {
        anchors.centerIn: parent
        color: "white"
        size: tile.symbolSize
        text: tile.symbol
    }
}
