pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Shows the order of the grid and offers the others.
GlassButton {
    id: button

    required property int order
    required property list<string> labels

    signal chosen(int order)

    helpText: qsTr("Sort")
    symbol: "swap_vert"
    text: labels[order]

    Accessible.description: qsTr("Sort")

    onClicked: menu.open()

    PopupHost {
        id: menu

        y: button.height + 4

        popup: SortMenu {
            labels: button.labels
            order: button.order

            onChosen: order => button.chosen(order)
        }
    }
}
