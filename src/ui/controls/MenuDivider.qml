pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

T.MenuSeparator {
    bottomPadding: 5
    implicitHeight: 11
    implicitWidth: 224
    leftPadding: 10
    rightPadding: 10
    topPadding: 5

    contentItem: Rectangle {
        color: Theme.separator
        implicitHeight: 1
    }
}
