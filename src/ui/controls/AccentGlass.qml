pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The pane under a view's one primary action.
GradientTile {
    property bool hovered: false
    property bool pressed: false
    readonly property color tone: pressed ? Qt.darker(Theme.accent, 1.12)
                                          : hovered ? Qt.lighter(Theme.accent, 1.08) : Theme.accent

    direction: GradientTile.Down
    end: Qt.darker(tone, 1.05)
    radius: Theme.controlRadius
    rim: Qt.rgba(1, 1, 1, 0.22)
    start: Qt.lighter(tone, 1.12)
}
