pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// Folders to choose from, inside a menu. Makes only the lines in view: a vault may have a thousand folders.
ListView {
    id: list

    required property FolderChoiceModel folders
    // One of them has a check mark.
    property bool checkable: false
    property location checkedFolder
    readonly property int lineHeight: 27

    signal chosen(folder: location)

    function step(to: int): void {
        currentIndex = Math.max(0, Math.min(to, count - 1));
        positionViewAtIndex(currentIndex, ListView.Contain);
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
    model: folders
    reuseItems: true

    T.ScrollBar.vertical: ThinScrollBar {}

    Accessible.name: qsTr("Folders")
    Accessible.role: Accessible.List

    onActiveFocusChanged: {
        if (activeFocus && currentIndex < 0)
            step(checkable ? folders.rowOf(checkedFolder) : 0);
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
    Keys.onEnterPressed: (currentItem as FolderLine)?.chosen()
    Keys.onReturnPressed: (currentItem as FolderLine)?.chosen()
    Keys.onSpacePressed: (currentItem as FolderLine)?.chosen()

    delegate: FolderLine {
        required property location folder
        required property int index

        checkable: list.checkable
        checked: list.checkable && folder.text === list.checkedFolder.text
        current: list.activeFocus && ListView.isCurrentItem
        height: list.lineHeight
        symbol: folder.empty ? "" : "folder"
        width: list.width

        onChosen: list.chosen(folder)
        onHovered: {
            list.currentIndex = index;
            list.forceActiveFocus(Qt.MouseFocusReason);
        }
    }
}
