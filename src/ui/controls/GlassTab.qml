pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// One of the tabs that choose a page; `checked` says whether its page shows.
T.TabButton {
    id: control

    required property string symbol

    activeFocusOnTab: true
    autoExclusive: false
    checkable: false
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    implicitHeight: 34
    implicitWidth: leftPadding + implicitContentWidth + rightPadding
    leftPadding: 11
    rightPadding: 12

    Accessible.name: text
    Accessible.role: Accessible.PageTab
    Accessible.selectable: true
    Accessible.selected: checked
    Accessible.onPressAction: control.clicked()

    Keys.onEnterPressed: clicked()
    Keys.onReturnPressed: clicked()

    background: ButtonPane {
        focused: control.visualFocus
        hovered: control.hovered
        pressed: control.down
        prominent: control.checked
    }
    contentItem: ButtonFace {
        foreground: control.checked ? Theme.accentForeground : Theme.text
        symbol: control.symbol
        text: control.text
    }
}
