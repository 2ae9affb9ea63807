pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// What can be done with the selected assets.
GlassMenu {
    id: cardMenu

    readonly property bool several: AssetActions.countInView > 1

    title: qsTr("Asset")
    visible: true

    MenuHeading { text: qsTr("Insert into") }
    GlassMenuItem {
        enabled: AssetActions.insertable
        text: qsTr("DaVinci Resolve")

        onTriggered: AssetActions.insertInto(AssetActions.Resolve)
    }
    GlassMenuItem {
        enabled: AssetActions.insertable
        text: qsTr("Premiere Pro")

        onTriggered: AssetActions.insertInto(AssetActions.Premiere)
    }
    MenuDivider {}
    GlassMenuItem {
        text: AssetActions.favoritesInView ? qsTr("Unfavorite") : qsTr("Favorite")

        onTriggered: AssetActions.toggleFavoritesInView()
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
        text: cardMenu.several ? qsTr("New Folder with Selection…") : qsTr("New Folder with Item…")

        onTriggered: AppState.newFolderFromSelection()
    }
    GlassMenuItem {
        enabled: !cardMenu.several
        text: qsTr("Rename…")

        onTriggered: AssetActions.renameFocused()
    }
    GlassMenuItem {
        text: qsTr("Reveal in Finder")

        onTriggered: AssetActions.revealSelected()
    }
    MenuDivider {}
    GlassMenuItem {
        destructive: true
        text: qsTr("Move to Trash")

        onTriggered: AssetActions.moveInViewToTrash()
    }
}
