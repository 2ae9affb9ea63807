pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Asks for the name of the folder that AppState wants to make.
Item {
    id: place

    NewFolderForm { id: form }
    Connections {
        function onShowNewFolderChanged() {
            if (!AppState.showNewFolder)
                sheet.close();
        }

        target: AppState
    }
    Sheet {
        id: sheet

        confirmText: qsTr("Create")
        confirmable: note.problem.length === 0
        title: qsTr("New Folder")

        onAboutToHide: AppState.showNewFolder = false
        onClosed: (place.parent as PopupLoader).release()
        onConfirmed: AssetActions.createFolder(field.text)
        onShown: {
            field.forceActiveFocus(Qt.PopupFocusReason);
            field.selectAll();
        }

        Label {
            color: Theme.textSecondary
            text: form.explanation
            width: parent.width
            wrapMode: Text.Wrap
        }
        NameField {
            id: field

            focus: true
            label: qsTr("Folder name")
            text: qsTr("New Folder")
            width: parent.width
        }
        FieldHint {
            id: note

            problem: form.problem(field.text)
        }
    }
}
