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

    onClicked: menu.open({ button: button })

    PopupLoader {
        id: menu

        file: "SortMenu.qml"
        y: button.height + 4
    }
}
