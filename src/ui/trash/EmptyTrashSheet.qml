pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Asks before everything in the trash is gone.
Item {
    id: place

    required property TrashModel trash

    Sheet {
        confirmText: qsTr("Empty Trash")
        destructive: true
        title: qsTr("Empty the Trash?")

        onClosed: (place.parent as PopupLoader).release()
        onConfirmed: place.trash.empty()

        Label {
            color: Theme.textSecondary
            lineHeight: 1.15
            text: qsTr("%1 items will be deleted permanently. This can't be undone.").arg(place.trash.count)
            width: parent.width
            wrapMode: Text.Wrap
        }
    }
}
