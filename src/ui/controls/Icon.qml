pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// A symbol by its name in the icon font; decoration, so silent to assistive tools.
Text {
    property int size: 16

    color: Theme.text
    font.family: Theme.iconFamily
    font.pixelSize: size
    height: size
    horizontalAlignment: Text.AlignHCenter
    renderType: Text.NativeRendering
    textFormat: Text.PlainText
    verticalAlignment: Text.AlignVCenter
    width: size

    Accessible.ignored: true
}
