pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

T.Menu {
    id: menu

    bottomPadding: 6
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    implicitWidth: 236
    leftPadding: 6
    margins: 8
    rightPadding: 6
    topPadding: 6

    // The item that has the keyboard is the menu's own, which cannot be named where it is declared.
    onAboutToShow: contentItem.parent.Accessible.name = title

    background: Rectangle {
        border.color: Theme.popupBorder
        color: Theme.popup
        radius: 12

        SoftShadow {
            anchors.fill: parent
            anchors.margins: -blur
            blur: 22
            color: Qt.rgba(0, 0, 0, Theme.dark ? 0.5 : 0.2)
            drop: 6
            radius: 12
        }
    }
    // The line of a menu inside this one.
    delegate: GlassMenuItem {}
    contentItem: ListView {
        clip: true
        currentIndex: menu.currentIndex
        implicitHeight: contentHeight
        interactive: contentHeight > height
        model: menu.contentModel
    }
    enter: Transition {
        NumberAnimation { duration: Theme.hoverTime; from: 0; property: "opacity"; to: 1 }
    }
    exit: Transition {
        NumberAnimation { duration: Theme.hoverTime; from: 1; property: "opacity"; to: 0 }
    }
}
