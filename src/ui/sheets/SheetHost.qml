pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Shows a sheet whenever it is wanted, also when that is while the last one is still leaving.
PopupHost {
    id: host

    required property bool wanted

    // A menu that asks for the sheet has closed by then, and the sheet keeps the keyboard.
    Timer {
        interval: 0
        running: host.wanted && host.shown === null

        onTriggered: host.open()
    }
}
