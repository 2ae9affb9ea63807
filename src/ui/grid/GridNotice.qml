pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// What stands in the grid while it has no cards: why, and what to do about it.
EmptyState {
    required property bool wanted

    action: notice.action
    end: notice.end
    opacity: wanted ? 1 : 0
    sentence: notice.sentence
    start: notice.start
    symbol: notice.icon
    title: notice.title
    visible: wanted

    // A list that fills in a moment shall not flash.
    Behavior on opacity {
        SequentialAnimation {
            PauseAnimation { duration: 250 }
            NumberAnimation { duration: Theme.panelTime }
        }
    }

    onActed: notice.act()

    EmptyStateModel { id: notice }
}
