pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// A symbol that turns while something is under way.
Icon {
    id: icon

    required property bool turning

    RotationAnimation on rotation {
        duration: 900
        from: 0
        loops: Animation.Infinite
        running: icon.turning && !Theme.reducedMotion
        to: 360

        onStopped: icon.rotation = 0
    }
}
