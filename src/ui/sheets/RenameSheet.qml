pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Asks for the new name of the item that AppState wants to rename.
Item {
    id: place

    RenameForm { id: form }
    Connections {
        function onRenameTargetChanged() {
            if (!AppState.renaming)
                sheet.close();
        }

        target: AppState
    }
    Sheet {
        id: sheet

        confirmText: qsTr("Rename")
        confirmable: note.problem.length === 0
        title: form.title

        onAboutToHide: AppState.stopRenaming()
        onClosed: (place.parent as PopupLoader).release()
        onConfirmed: AssetActions.renameTo(field.text)
        onShown: {
            field.forceActiveFocus(Qt.PopupFocusReason);
            field.select(0, form.selectionLength);
        }

        NameField {
            id: field

            focus: true
            label: qsTr("Name")
            text: form.name
            width: parent.width
        }
        FieldHint {
            id: note

            problem: form.problem(field.text)
            warning: form.warning(field.text)
        }
    }
}
