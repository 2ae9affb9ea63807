pragma ComponentBehavior: Bound

import QtQuick

// Makes its content while it is wanted: what the user does not look at costs nothing. (A Loader makes no bound
// components on Qt 6.4.)
FocusScope {
    id: place

    required property Component content
    property bool wanted: false
    // Gets the keyboard when the content had it and goes.
    property Item focusAfter: null
    property Item made: null

    function follow(): void {
        if (wanted === (made !== null))
            return;
        if (!wanted && activeFocus)
            focusAfter?.forceActiveFocus(Qt.OtherFocusReason);
        const last = made;
        made = wanted ? content.createObject(place) as Item : null;
        last?.destroy();
    }

    visible: made !== null

    Component.onCompleted: follow()
    onWantedChanged: follow()
}
