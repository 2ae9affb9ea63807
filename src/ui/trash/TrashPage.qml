pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// What was deleted and can still be brought back.
Page {
    id: page

    subtitle: qsTr("Deleted items stay here for %1 days, then they're removed for good.").arg(trashModel.retentionDays)
    title: qsTr("Trash")

    TrashModel {
        id: trashModel

        vault: Vault
    }

    Row {
        spacing: Theme.space2
        visible: trashModel.pickedCount > 0
        x: 6
        y: 64 + page.push

        GlassButton {
            prominent: true
            text: qsTr("Restore %1").arg(trashModel.pickedCount)

            onClicked: trashModel.restorePicked()
        }
        GlassButton {
            destructive: true
            text: qsTr("Delete Now")

            onClicked: trashModel.deletePicked()
        }
    }
    GlassButton {
        anchors.right: parent.right
        anchors.rightMargin: 6
        destructive: true
        symbol: "delete_forever"
        text: qsTr("Empty Trash")
        visible: trashModel.count > 0
        y: 64 + page.push

        onClicked: question.open()
    }
    ListView {
        id: list

        activeFocusOnTab: count > 0
        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.leftMargin: 6
        anchors.right: parent.right
        anchors.rightMargin: 6
        anchors.top: parent.top
        anchors.topMargin: 104 + page.push
        bottomMargin: Theme.space3
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        focus: true
        highlightFollowsCurrentItem: true
        highlightMoveDuration: Theme.hoverTime
        keyNavigationEnabled: true
        model: trashModel
        spacing: Theme.space2
        topMargin: 4

        T.ScrollBar.vertical: ThinScrollBar {}

        Accessible.name: qsTr("Trash")
        Accessible.role: Accessible.List

        Keys.onPressed: event => {
            if (event.key === Qt.Key_Space)
                trashModel.togglePick(currentIndex);
            else if (event.key === Qt.Key_Escape && trashModel.pickedCount > 0)
                trashModel.clearPicks();
            else
                return;
            event.accepted = true;
        }

        delegate: TrashRow {
            required property int index

            current: list.activeFocus && ListView.isCurrentItem
            width: ListView.view.width

            onDeleteAsked: trashModel.deleteNow(index)
            onPickAsked: {
                list.forceActiveFocus(Qt.MouseFocusReason);
                list.currentIndex = index;
                trashModel.togglePick(index);
            }
            onRestoreAsked: trashModel.restore(index)
        }
    }
    EmptyState {
        anchors.centerIn: parent
        end: "#2A2A30"
        sentence: qsTr("Anything you delete in Cratewell lands here first, so you can bring it back.")
        start: "#5A5A63"
        symbol: "delete"
        title: qsTr("Trash is empty")
        visible: trashModel.count === 0
        width: Math.min(300, parent.width - 2 * Theme.space4)
    }
    PopupHost {
        id: question

        anchors.fill: parent

        popup: EmptyTrashSheet { trash: trashModel }
    }
}
