pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The folders that the selected assets can be moved to, and the move.
FolderList {
    folders: FolderChoiceModel {
        purpose: FolderChoiceModel.Move
        state: AppState
        vault: Vault
    }

    onChosen: folder => AssetActions.moveInViewTo(folder)
}
