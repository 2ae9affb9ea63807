pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Shows the order of the grid and offers the others.
GlassButton {
    id: button

    required property int order
    readonly property list<string> names: [qsTr("Name"), qsTr("Added"), qsTr("Kind"), qsTr("Size")]

    signal chosen(int order)

    helpText: qsTr("Sort")
    symbol: "swap_vert"
    text: names[order]

    Accessible.description: qsTr("Sort")

    onClicked: menu.visible ? menu.close() : menu.open()

    GlassMenu {
        id: menu

        implicitWidth: 148
        title: qsTr("Sort")
        y: button.height + 4

        Repeater {
            model: button.names

            GlassMenuItem {
                required property string modelData
                required property int index

                checkable: true
                checked: index === button.order
                implicitWidth: 136
                text: modelData

                onTriggered: button.chosen(index)
            }
        }
    }
}
