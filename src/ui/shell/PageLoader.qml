pragma ComponentBehavior: Bound

import QtQuick

// Makes a page when it is wanted: what the user does not look at costs nothing.
Loader {
    id: loader

    required property string file
    required property bool wanted
    required property Window window

    function follow(): void {
        if (wanted)
            setSource(file, { window: window });
        else
            source = "";
    }

    visible: wanted

    Component.onCompleted: follow()
    onWantedChanged: follow()
}
