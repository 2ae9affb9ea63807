pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T

// Makes a popup when it is opened and frees it once it has closed: what is seldom opened costs nothing at the
// start.
Item {
    id: host

    // Of a T.Popup that is visible as soon as it is made.
    required property Component popup
    property T.Popup shown: null

    function open(): void {
        if (!shown)
            shown = popup.createObject(host) as T.Popup;
    }
    // Anew where one is still open.
    function reopen(): void {
        release();
        open();
    }
    function release(): void {
        const last = shown;
        shown = null;
        last?.destroy();
    }

    Connections {
        function onClosed() { host.release(); }

        target: host.shown
    }
}
