pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Offers to import files or a folder.
PopupLoader {
    signal filesWanted
    signal folderWanted

    file: "ImportMenu.qml"
}
