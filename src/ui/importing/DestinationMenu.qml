pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The places that an import can go to.
GlassMenu {
    id: destinationMenu

    title: qsTr("Destination")
    visible: true

    onVisibleChanged: {
        if (visible)
            list.forceActiveFocus(Qt.PopupFocusReason);
    }

    FolderList {
        id: list

        checkable: true
        checkedFolder: ImportController.destination
        folders: FolderChoiceModel {
            purpose: FolderChoiceModel.Import
            state: AppState
            vault: Vault
        }

        onChosen: folder => {
            ImportController.choose(folder);
            destinationMenu.dismiss();
        }
    }
}
