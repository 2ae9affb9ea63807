pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// A command in a menu.
GlassMenuItem {
    required property Command command

    enabled: command.enabled
    keys: Formats.keys(command.keys)
    text: command.text

    onTriggered: command.triggered()
}
