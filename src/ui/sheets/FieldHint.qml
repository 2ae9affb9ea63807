pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// What is wrong with a name, or else what it leads to, beneath its field. It keeps its place while it is empty.
Label {
    required property string problem
    property string warning: ""

    color: problem ? Theme.destructive : Theme.warning
    font.pixelSize: Theme.secondarySize
    height: 30
    text: problem || warning
    width: parent?.width ?? 0
    wrapMode: Text.Wrap

    Accessible.ignored: text.length === 0
}
