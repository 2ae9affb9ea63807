pragma ComponentBehavior: Bound

import QtQuick

// Makes a popup when it is wanted; the file's root item opens it and calls release() when it has closed. What
// is seldom opened costs nothing at the start.
Loader {
    id: loader

    required property string file

    function open(properties: var): void {
        if (status === Loader.Null)
            setSource(file, properties);
    }
    // Anew where one is still open.
    function reopen(properties: var): void {
        source = "";
        setSource(file, properties);
    }
    function release(): void {
        source = "";
    }
}
