pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Where to move the selected assets; stands on the upper edge of what opens it.
GlassMenu {
    id: moveMenu

    implicitWidth: 240
    title: qsTr("Move to")
    visible: true
    y: -height - 6

    onVisibleChanged: {
        if (visible)
            folders.forceActiveFocus(Qt.PopupFocusReason);
    }

    MoveList {
        id: folders

        onChosen: moveMenu.dismiss()
    }
    GlassMenuItem {
        id: none

        enabled: false
        text: qsTr("No folder takes all of these")
    }

    Component.onCompleted: {
        if (folders.count > 0)
            removeItem(none);
    }
}
