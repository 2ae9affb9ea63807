pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Asks before everything in the trash is gone.
Sheet {
    id: sheet

    required property TrashModel trash

    confirmText: qsTr("Empty Trash")
    destructive: true
    title: qsTr("Empty the Trash?")

    onConfirmed: trash.empty()

    Label {
        color: Theme.textSecondary
        lineHeight: 1.15
        text: qsTr("%1 items will be deleted permanently. This can't be undone.").arg(sheet.trash.count)
        width: parent.width
        wrapMode: Text.Wrap
    }
}
