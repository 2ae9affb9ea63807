pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Asks for the name of the folder that AppState wants to make.
Sheet {
    id: sheet

    readonly property string explanation: NameForms.newFolderExplanation()

    confirmText: qsTr("Create")
    confirmable: note.problem.length === 0
    title: qsTr("New Folder")

    onAboutToHide: AppState.showNewFolder = false
    onConfirmed: AssetActions.createFolder(field.text)
    onShown: {
        field.forceActiveFocus(Qt.PopupFocusReason);
        field.selectAll();
    }

    Connections {
        function onShowNewFolderChanged() {
            if (!AppState.showNewFolder)
                sheet.close();
        }

        target: AppState
    }
    Label {
        color: Theme.textSecondary
        text: sheet.explanation
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

        problem: NameForms.problem(field.text)
    }
}
