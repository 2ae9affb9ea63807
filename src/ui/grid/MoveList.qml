pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// The folders that the selected assets can be moved to, inside a menu. Makes only the lines in view: a vault
// may have a thousand folders.
ListView {
    id: list

    readonly property int lineHeight: 27

    signal chosen

    function step(to: int): void {
        currentIndex = Math.max(0, Math.min(to, count - 1));
        positionViewAtIndex(currentIndex, ListView.Contain);
    }
    function choose(folder: location): void {
        AssetActions.moveInViewTo(folder);
        chosen();
    }

    activeFocusOnTab: count > 0
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    currentIndex: -1
    highlightFollowsCurrentItem: false
    implicitHeight: Math.min(count, 14) * lineHeight
    implicitWidth: 228
    interactive: contentHeight > height
    keyNavigationEnabled: false
    model: FolderChoiceModel {}
    reuseItems: true

    T.ScrollBar.vertical: ThinScrollBar {}

    Accessible.name: qsTr("Folders")
    Accessible.role: Accessible.List

    onActiveFocusChanged: {
        if (activeFocus && currentIndex < 0)
            step(0);
    }
    // What leads beyond the ends is the menu's.
    Keys.onDownPressed: event => {
        event.accepted = currentIndex < count - 1;
        step(currentIndex + 1);
    }
    Keys.onUpPressed: event => {
        event.accepted = currentIndex > 0;
        step(currentIndex - 1);
    }
    Keys.onEnterPressed: (currentItem as MoveLine)?.chosen()
    Keys.onReturnPressed: (currentItem as MoveLine)?.chosen()
    Keys.onSpacePressed: (currentItem as MoveLine)?.chosen()

    delegate: MoveLine {
        required property location folder
        required property int index

        current: list.activeFocus && ListView.isCurrentItem
        height: list.lineHeight
        width: list.width

        onChosen: list.choose(folder)
        onHovered: {
            list.currentIndex = index;
            list.forceActiveFocus(Qt.MouseFocusReason);
        }
    }
}
