pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// What can be done with the selected assets.
GlassMenu {
    id: menu

    readonly property bool several: SelectionActions.count > 1

    title: qsTr("Asset")
    visible: true

    MenuHeading { text: qsTr("Insert into") }
    GlassMenuItem {
        enabled: SelectionActions.insertable
        text: qsTr("DaVinci Resolve")

        onTriggered: SelectionActions.insertInto(SelectionActions.Resolve)
    }
    GlassMenuItem {
        enabled: SelectionActions.insertable
        text: qsTr("Premiere Pro")

        onTriggered: SelectionActions.insertInto(SelectionActions.Premiere)
    }
    MenuDivider {}
    GlassMenuItem {
        text: SelectionActions.favorite ? qsTr("Unfavorite") : qsTr("Favorite")

        onTriggered: SelectionActions.toggleFavorite()
    }
    GlassMenu {
        id: moveMenu

        enabled: folders.count > 0
        implicitWidth: 240
        title: qsTr("Move to")

        onVisibleChanged: {
            if (visible)
                folders.forceActiveFocus(Qt.PopupFocusReason);
        }

        MoveList {
            id: folders

            onChosen: moveMenu.dismiss()
        }
    }
    GlassMenuItem {
        text: menu.several ? qsTr("New Folder with Selection…") : qsTr("New Folder with Item…")

        onTriggered: AppState.newFolderFromSelection()
    }
    GlassMenuItem {
        enabled: !menu.several
        text: qsTr("Rename…")

        onTriggered: SelectionActions.rename()
    }
    GlassMenuItem {
        text: qsTr("Reveal in Finder")

        onTriggered: AppState.revealSelected()
    }
    MenuDivider {}
    GlassMenuItem {
        destructive: true
        text: qsTr("Move to Trash")

        onTriggered: SelectionActions.moveToTrash()
    }
}
