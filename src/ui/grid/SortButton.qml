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

    onClicked: menu.open()

    PopupHost {
        id: menu

        y: button.height + 4

        popup: SortMenu {
            names: button.names
            order: button.order

            onChosen: order => button.chosen(order)
        }
    }
}
