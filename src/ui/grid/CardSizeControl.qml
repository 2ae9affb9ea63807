pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// How large the cards of the grid are.
Row {
    id: control

    required property real size
    readonly property real smallest: 140
    readonly property real largest: 340
    // Of the slider.
    property real length: longest
    readonly property real longest: 90
    readonly property real shortest: 48
    // Without the slider; also while all of it is hidden.
    readonly property real signsWidth: fewer.width + more.width + 2 * spacing

    signal chosen(real size)

    spacing: 8

    Icon {
        id: more

        anchors.verticalCenter: parent.verticalCenter
        color: Theme.textSecondary
        size: 13
        text: "grid_on"
    }
    GlassSlider {
        id: slider

        anchors.verticalCenter: parent.verticalCenter
        from: control.smallest
        label: qsTr("Card size")
        shown: control.size
        stepSize: 1
        to: control.largest
        width: control.length

        onChosen: size => control.chosen(size)
    }
    Icon {
        id: fewer

        anchors.verticalCenter: parent.verticalCenter
        color: Theme.textSecondary
        size: 15
        text: "grid_view"
    }
}
