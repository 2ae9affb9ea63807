pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Shows a sheet whenever it is wanted, also when that is while the last one is still leaving.
PopupLoader {
    id: loader

    required property bool wanted
    readonly property bool due: wanted && status === Loader.Null

    Timer {
        interval: 0
        running: loader.due

        onTriggered: loader.open({})
    }
}
