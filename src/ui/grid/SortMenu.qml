pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The orders to choose from.
Item {
    id: place

    required property SortButton button

    GlassMenu {
        implicitWidth: 148
        title: qsTr("Sort")
        visible: true

        onClosed: (place.parent as PopupLoader).release()

        Repeater {
            model: place.button.labels

            GlassMenuItem {
                required property string modelData
                required property int index

                checkable: true
                checked: index === place.button.order
                implicitWidth: 136
                text: modelData

                onTriggered: place.button.chosen(index)
            }
        }
    }
}
