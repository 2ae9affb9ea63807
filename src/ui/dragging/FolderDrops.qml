pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Takes what is dropped on the folders of a list, and shows the way there: folders open and the list rolls
// while a drag waits.
DropArea {
    id: drops

    required property ListView list
    // The row under the pointer, or -1, and what a drop there would do.
    property int row: -1
    readonly property int effect: row < 0 ? DropController.Nothing
                                : DropController.judging ? DropController.Unknown
                                : DropController.effectOn(FolderTreeModel.folderAt(row))

    readonly property int edge: 26
    // Per step; negative for up.
    property real roll: 0

    function follow(y: real): void {
        row = list.indexAt(list.width / 2, y + list.contentY);
        roll = y < edge ? -6 : y > height - edge ? 6 : 0;
    }
    function leave(): void {
        row = -1;
        roll = 0;
    }

    keys: ["text/uri-list"]

    onDropped: drop => {
        follow(drop.y);
        const folder = FolderTreeModel.folderAt(row);
        const wanted = DropController.effectOn(folder) !== DropController.Nothing;
        leave();
        if (!wanted)
            return;
        drop.accept(Qt.CopyAction);
        DropController.dropOn(folder);
    }
    onEntered: drag => {
        DropController.enter(drag.getDataAsString("text/uri-list"), drag.getDataAsString(DropController.ownType));
        follow(drag.y);
    }
    onExited: leave()
    onPositionChanged: drag => {
        follow(drag.y);
        drag.accepted = effect !== DropController.Nothing;
    }
    onRowChanged: expand.restart()

    Timer {
        id: expand

        interval: 700

        onTriggered: {
            if (drops.row >= 0)
                FolderTreeModel.setExpanded(drops.row, true);
        }
    }
    Timer {
        interval: 16
        repeat: true
        running: drops.roll !== 0

        onTriggered: {
            const list = drops.list;
            const top = list.originY - list.topMargin;
            const bottom = Math.max(top, list.originY + list.contentHeight - list.height);
            list.contentY = Math.max(top, Math.min(list.contentY + drops.roll, bottom));
            drops.row = list.indexAt(list.width / 2, drops.drag.y + list.contentY);
        }
    }
}
