pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// What a view shows instead of nothing: a tinted tile, one sentence, at most one action.
Column {
    id: empty

    required property string symbol
    required property color start
    required property color end
    required property string title
    required property string sentence
    property string action: ""

    signal acted

    spacing: Theme.space2

    IconTile {
        anchors.horizontalCenter: parent.horizontalCenter
        end: empty.end
        gradient: Prefs.gradientTiles
        height: 68
        radius: 19
        start: empty.start
        symbol: empty.symbol
        symbolSize: 34
        width: 68
    }
    Label {
        font.pixelSize: Theme.headingSize
        font.weight: Font.Bold
        horizontalAlignment: Text.AlignHCenter
        text: empty.title
        topPadding: Theme.space2
        width: parent.width
    }
    Label {
        color: Theme.textSecondary
        horizontalAlignment: Text.AlignHCenter
        lineHeight: 1.2
        text: empty.sentence
        width: parent.width
        wrapMode: Text.Wrap
    }
    Item {
        height: Theme.space1
        visible: button.visible
        width: 1
    }
    GlassButton {
        id: button

        anchors.horizontalCenter: parent.horizontalCenter
        text: empty.action
        visible: empty.action.length > 0

        Accessible.ignored: !visible

        onClicked: empty.acted()
    }
}
