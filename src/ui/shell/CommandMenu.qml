pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The program's menu, where the system has no menu bar for it.
GlassMenu {
    id: commandMenu

    required property Commands commands

    implicitWidth: 292
    title: qsTr("Menu")
    visible: true

    MenuHeading { text: qsTr("File") }
    CommandItem { command: commandMenu.commands.newFolder }
    CommandItem { command: commandMenu.commands.importAssets }
    MenuDivider {}
    MenuHeading { text: qsTr("Asset") }
    CommandItem { command: commandMenu.commands.insert }
    CommandItem { command: commandMenu.commands.playPause }
    CommandItem { command: commandMenu.commands.reveal }
    CommandItem { command: commandMenu.commands.toggleFavorite }
    CommandItem { command: commandMenu.commands.newFolderWithSelection }
    CommandItem {
        command: commandMenu.commands.moveToTrash
        destructive: true
    }
    MenuDivider {}
    CommandItem { command: commandMenu.commands.selectAll }
    CommandItem { command: commandMenu.commands.settings }
    CommandItem { command: commandMenu.commands.quit }
}
