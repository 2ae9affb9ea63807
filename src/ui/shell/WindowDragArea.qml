pragma ComponentBehavior: Bound

import QtQuick

// Moves the window when dragged; a double click maximizes it or puts it back.
MouseArea {
    id: area

    required property Window window
    // A drag starts one move only: after the window manager's grab the button may seem pressed again.
    property bool armed: false
    property point pressedAt

    onDoubleClicked: window.visibility === Window.Maximized ? window.showNormal() : window.showMaximized()
    onPositionChanged: mouse => {
        if (!armed || Math.hypot(mouse.x - pressedAt.x, mouse.y - pressedAt.y) <= 8)
            return;
        armed = false;
        window.startSystemMove();
    }
    onPressed: mouse => {
        pressedAt = Qt.point(mouse.x, mouse.y);
        armed = true;
    }
}
