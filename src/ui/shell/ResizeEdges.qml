pragma ComponentBehavior: Bound

import QtQuick

// The frame by which the window is resized, along the edges of its parent.
Item {
    id: frame

    required property Window window
    readonly property int thickness: 5
    readonly property int corner: 12

    anchors.fill: parent
    enabled: window.visibility !== Window.Maximized && window.visibility !== Window.FullScreen

    component Edge: MouseArea {
        required property int edges

        hoverEnabled: true

        onPressed: frame.window.startSystemResize(edges)
    }
    component SideEdge: Edge {
        anchors.bottom: parent.bottom
        anchors.bottomMargin: frame.corner
        anchors.top: parent.top
        anchors.topMargin: frame.corner
        cursorShape: Qt.SizeHorCursor
        width: frame.thickness
    }
    component LevelEdge: Edge {
        anchors.left: parent.left
        anchors.leftMargin: frame.corner
        anchors.right: parent.right
        anchors.rightMargin: frame.corner
        cursorShape: Qt.SizeVerCursor
        height: frame.thickness
    }
    component Corner: Edge {
        cursorShape: edges === (Qt.TopEdge | Qt.LeftEdge) || edges === (Qt.BottomEdge | Qt.RightEdge)
                     ? Qt.SizeFDiagCursor : Qt.SizeBDiagCursor
        height: frame.corner
        width: frame.corner
    }

    SideEdge { anchors.left: parent.left; edges: Qt.LeftEdge }
    SideEdge { anchors.right: parent.right; edges: Qt.RightEdge }
    LevelEdge { anchors.top: parent.top; edges: Qt.TopEdge }
    LevelEdge { anchors.bottom: parent.bottom; edges: Qt.BottomEdge }
    Corner { anchors.left: parent.left; anchors.top: parent.top; edges: Qt.TopEdge | Qt.LeftEdge }
    Corner { anchors.right: parent.right; anchors.top: parent.top; edges: Qt.TopEdge | Qt.RightEdge }
    Corner { anchors.bottom: parent.bottom; anchors.left: parent.left; edges: Qt.BottomEdge | Qt.LeftEdge }
    Corner { anchors.bottom: parent.bottom; anchors.right: parent.right; edges: Qt.BottomEdge | Qt.RightEdge }
}
