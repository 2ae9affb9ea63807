pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The pane under a view's one primary action.
Rectangle {
    id: pane

    property bool hovered: false
    property bool pressed: false
    readonly property color tone: pressed ? Qt.darker(Theme.accent, 1.12)
                                          : hovered ? Qt.lighter(Theme.accent, 1.08) : Theme.accent

    border.color: Qt.rgba(1, 1, 1, 0.22)
    radius: Theme.controlRadius

    gradient: Gradient {
        GradientStop { color: Qt.lighter(pane.tone, 1.12); position: 0 }
        GradientStop { color: Qt.darker(pane.tone, 1.05); position: 1 }
    }
}
