pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The folders that the selected assets can be moved to, as lines of a menu.
Repeater {
    id: items

    model: MoveTargets {}

    GlassMenuItem {
        required property location folder
        required property string name
        required property int depth

        implicitWidth: 228
        leftPadding: 30 + 14 * depth
        symbol: depth > 0 ? "folder" : "folder_special"
        text: name

        onTriggered: SelectionActions.moveTo(folder)
    }
}
