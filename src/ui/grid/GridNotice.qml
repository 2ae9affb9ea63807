pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// What stands in the grid while it has no cards: why, and what to do about it.
EmptyState {
    required property bool wanted

    action: EmptyStateModel.action
    end: EmptyStateModel.end
    opacity: wanted ? 1 : 0
    sentence: EmptyStateModel.sentence
    start: EmptyStateModel.start
    symbol: EmptyStateModel.icon
    title: EmptyStateModel.title
    visible: wanted

    // A list that fills in a moment does not flash.
    Behavior on opacity {
        SequentialAnimation {
            PauseAnimation { duration: 250 }
            NumberAnimation { duration: Theme.panelTime }
        }
    }

    onActed: EmptyStateModel.act()
}
