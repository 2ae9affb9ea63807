pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The heading of a section; capital by font alone.
Label {
    color: Theme.textTertiary
    font.capitalization: Font.AllUppercase
    font.letterSpacing: 1
    font.pixelSize: Theme.sectionSize
    font.weight: Font.Bold

    Accessible.role: Accessible.Heading
}
