pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// One entry of the sidebar's trees: a folder, below its section's heading where it is a category's own.
Item {
    id: entry

    required property string name
    required property string symbol
    required property color tint
    required property bool tinted
    required property int depth
    required property int count
    required property bool expandable
    required property bool expanded
    required property bool selected
    required property bool current
    required property bool showCount
    // What a drop here would do: a DropController.Effect.
    required property int drop
    readonly property bool first: depth === 0

    signal activated
    signal toggled
    signal addWanted
    signal menuAsked(at: point)

    height: (first ? heading.height : 0) + row.height

    CategorySection {
        id: heading

        title: entry.name
        visible: entry.first
        width: entry.width

        onAddWanted: entry.addWanted()
    }
    FolderRow {
        id: row

        anchors.bottom: parent.bottom
        count: entry.count
        current: entry.current
        depth: entry.depth
        drop: entry.drop
        expandable: entry.expandable
        expanded: entry.expanded
        name: entry.name
        selected: entry.selected
        showCount: entry.showCount
        symbol: entry.symbol
        tint: entry.tint
        tinted: entry.tinted
        width: entry.width

        onActivated: entry.activated()
        onMenuAsked: at => entry.menuAsked(mapToItem(entry, at))
        onToggled: entry.toggled()
    }
}
