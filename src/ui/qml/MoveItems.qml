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
        symbol: "folder"
        symbolIndent: 14 * depth
        text: name

        onTriggered: SelectionActions.moveTo(folder)
    }
}
