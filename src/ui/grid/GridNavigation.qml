pragma ComponentBehavior: Bound

import QtQuick

// Where the keys lead in a grid.
QtObject {
    required property int columns
    required property int count
    required property int linesInView

    // The row a key leads to from `current`, or -1 when it moves nothing. The column stays as far as the last
    // line reaches.
    function rowFor(key: int, current: int): int {
        const row = Math.max(0, current);
        const last = count - 1;
        const linesAbove = Math.floor(row / columns);
        const linesBelow = Math.floor(last / columns) - linesAbove;
        const page = Math.max(1, linesInView);
        switch (key) {
        case Qt.Key_Left:
            return Math.max(0, row - 1);
        case Qt.Key_Right:
            return Math.min(last, row + 1);
        case Qt.Key_Up:
            return row - Math.min(1, linesAbove) * columns;
        case Qt.Key_Down:
            return Math.min(last, row + Math.min(1, linesBelow) * columns);
        case Qt.Key_PageUp:
            return row - Math.min(page, linesAbove) * columns;
        case Qt.Key_PageDown:
            return Math.min(last, row + Math.min(page, linesBelow) * columns);
        case Qt.Key_Home:
            return 0;
        case Qt.Key_End:
            return last;
        }
        return -1;
    }
}
