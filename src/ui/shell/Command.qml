pragma ComponentBehavior: Bound

import QtQuick

// Something the user can do from a menu or with keys.
QtObject {
    required property string text
    // Portable key sequences; empty for none. The second is another way to reach the same.
    property string keys: ""
    property string otherKeys: ""
    property bool enabled: true
    // False where a text field gives the keys a meaning of its own.
    property bool whileTyping: true

    signal triggered
}
