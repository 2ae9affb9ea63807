pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The program's menu, where the system has no menu bar for it.
GlassMenu {
    id: menu

    required property Commands commands

    implicitWidth: 292
    title: qsTr("Menu")
    visible: true

    MenuHeading { text: qsTr("File") }
    CommandItem { command: menu.commands.newFolder }
    CommandItem { command: menu.commands.importAssets }
    MenuDivider {}
    MenuHeading { text: qsTr("Asset") }
    CommandItem { command: menu.commands.insert }
    CommandItem { command: menu.commands.playPause }
    CommandItem { command: menu.commands.reveal }
    CommandItem { command: menu.commands.toggleFavorite }
    CommandItem { command: menu.commands.newFolderWithSelection }
    CommandItem {
        command: menu.commands.moveToTrash
        destructive: true
    }
    MenuDivider {}
    CommandItem { command: menu.commands.selectAll }
    CommandItem { command: menu.commands.settings }
    CommandItem { command: menu.commands.quit }
}
