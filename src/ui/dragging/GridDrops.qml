pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Takes files from outside that are dropped on the grid, and says where they will go.
DropArea {
    id: drops

    // What a drop would do: a DropController.Effect.
    property int effect: DropController.Nothing
    readonly property bool taking: effect !== DropController.Nothing

    keys: ["text/uri-list"]

    onDropped: drop => {
        const wanted = taking;
        effect = DropController.Nothing;
        if (!wanted)
            return;
        drop.accept(Qt.CopyAction);
        DropController.dropOnGrid();
    }
    onEntered: drag => {
        DropController.enter(drag.getDataAsString("text/uri-list"), drag.getDataAsString(DropController.ownType));
        effect = DropController.effectOnGrid();
        drag.accepted = taking;
    }
    onExited: effect = DropController.Nothing

    Connections {
        target: DropController

        function onJudgingChanged(): void {
            if (drops.containsDrag)
                drops.effect = DropController.effectOnGrid();
        }
    }

    Rectangle {
        anchors.fill: parent
        anchors.margins: 2
        border.color: Theme.accent
        border.width: 2
        color: Qt.rgba(Theme.accent.r, Theme.accent.g, Theme.accent.b, 0.12)
        radius: Theme.panelRadius
        visible: drops.taking

        Rectangle {
            anchors.bottom: parent.bottom
            anchors.bottomMargin: Theme.space4
            anchors.horizontalCenter: parent.horizontalCenter
            color: Theme.accent
            height: 34
            radius: 17
            width: Math.min(line.implicitWidth + 32, parent.width - 2 * Theme.space4)

            Label {
                id: line

                anchors.centerIn: parent
                color: Theme.accentForeground
                font.weight: Font.DemiBold
                text: drops.effect === DropController.Copy ? qsTr("Copy into %1").arg(AppState.scopeTitle)
                    : drops.effect === DropController.Sort ? qsTr("Copy, sorted by type") : qsTr("Checking…")
                width: Math.min(implicitWidth, parent.width - 24)
            }
        }
    }
}
