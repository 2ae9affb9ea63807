pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// One line of a menu, with its shortcut at the right end.
T.MenuItem {
    id: item

    property string keys: ""
    property bool destructive: false
    readonly property color foreground: highlighted ? Theme.accentForeground : destructive ? Theme.destructive : Theme.text

    hoverEnabled: true
    implicitHeight: 27
    implicitWidth: 224
    leftPadding: checkable ? 26 : 10
    rightPadding: 10

    Accessible.checkable: checkable
    Accessible.checked: checked
    Accessible.description: keys
    Accessible.name: text
    Accessible.role: Accessible.MenuItem
    Accessible.onPressAction: {
        if (!item.enabled)
            return;
        item.triggered();
        if (!item.subMenu)
            item.menu?.dismiss();
    }

    background: Rectangle {
        color: item.highlighted ? Theme.accent : "transparent"
        radius: 7
    }
    contentItem: MenuLine {
        foreground: item.foreground
        keys: item.keys
        keysForeground: item.highlighted ? Theme.accentForeground : Theme.textTertiary
        opacity: item.enabled ? 1 : 0.4
        text: item.text
    }
    indicator: Icon {
        anchors.left: parent.left
        anchors.leftMargin: 7
        anchors.verticalCenter: parent.verticalCenter
        color: item.foreground
        size: 14
        text: "check"
        visible: item.checkable && item.checked
    }
    arrow: Icon {
        anchors.right: parent.right
        anchors.rightMargin: 6
        anchors.verticalCenter: parent.verticalCenter
        color: item.highlighted ? item.foreground : Theme.textTertiary
        opacity: item.enabled ? 1 : 0.4
        size: 15
        text: "chevron_right"
        visible: item.subMenu !== null
    }
}
