pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Text of the interface.
Text {
    color: Theme.text
    elide: Text.ElideRight
    font.family: Theme.family
    font.pixelSize: Theme.bodySize
    renderType: Text.NativeRendering
    textFormat: Text.PlainText

    Accessible.name: text
    Accessible.role: Accessible.StaticText
}
