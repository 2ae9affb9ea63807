pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Asks for the new name of the item that AppState wants to rename.
Sheet {
    id: sheet

    readonly property renameQuestion question: NameForms.renameQuestion()

    confirmText: qsTr("Rename")
    confirmable: note.problem.length === 0
    title: question.title

    onAboutToHide: AppState.stopRenaming()
    onConfirmed: AssetActions.renameTo(field.text)
    onShown: {
        field.forceActiveFocus(Qt.PopupFocusReason);
        field.select(0, question.selectionLength);
    }

    Connections {
        function onRenameTargetChanged() {
            if (!AppState.renaming)
                sheet.close();
        }

        target: AppState
    }
    NameField {
        id: field

        focus: true
        label: qsTr("Name")
        text: sheet.question.name
        width: parent.width
    }
    FieldHint {
        id: note

        problem: NameForms.problem(field.text)
        warning: sheet.question.warning(field.text)
    }
}
