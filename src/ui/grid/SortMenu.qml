pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The orders to choose from.
GlassMenu {
    id: sortMenu

    required property list<string> labels
    required property int order

    signal chosen(order: int)

    implicitWidth: 148
    title: qsTr("Sort")
    visible: true

    Repeater {
        model: sortMenu.labels

        GlassMenuItem {
            required property string modelData
            required property int index

            checkable: true
            checked: index === sortMenu.order
            implicitWidth: 136
            text: modelData

            onTriggered: sortMenu.chosen(index)
        }
    }
}
