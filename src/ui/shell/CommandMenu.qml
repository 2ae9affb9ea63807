pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The program's menu, where the system has no menu bar for it.
Item {
    id: place

    required property Commands commands

    GlassMenu {
        implicitWidth: 292
        title: qsTr("Menu")
        visible: true

        onClosed: (place.parent as PopupLoader).release()

        MenuHeading { text: qsTr("File") }
        CommandItem { command: place.commands.newFolder }
        CommandItem { command: place.commands.importAssets }
        MenuDivider {}
        MenuHeading { text: qsTr("Asset") }
        CommandItem { command: place.commands.insert }
        CommandItem { command: place.commands.playPause }
        CommandItem { command: place.commands.reveal }
        CommandItem { command: place.commands.toggleFavorite }
        CommandItem { command: place.commands.newFolderWithSelection }
        CommandItem {
            command: place.commands.moveToTrash
            destructive: true
        }
        MenuDivider {}
        CommandItem { command: place.commands.selectAll }
        CommandItem { command: place.commands.settings }
        CommandItem { command: place.commands.quit }
    }
}
