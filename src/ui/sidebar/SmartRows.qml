pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// The rows above the folder trees.
Column {
    id: rows

    component SmartRow: SidebarRow {
        gradient: Prefs.gradientTiles
    }
    component ScopeRow: SmartRow {
        required property int kind

        selected: Navigator.place === kind

        onActivated: Navigator.show(kind)
    }
    component PluginRow: SmartRow {
        required property string page

        selected: Navigator.place === Navigator.Plugin && Navigator.page === page
        symbol: "extension"

        onActivated: Navigator.showPlugin(page)
    }

    ScopeRow {
        count: Prefs.showCounts ? LibraryCounts.all : -1
        end: Theme.pink
        kind: Navigator.All
        start: Theme.accent
        symbol: "apps"
        title: qsTr("All Assets")
    }
    ScopeRow {
        count: Prefs.showCounts ? LibraryCounts.favorites : -1
        end: Theme.orange
        kind: Navigator.Favorites
        start: Theme.amber
        symbol: "star"
        title: qsTr("Favorites")
    }
    ScopeRow {
        count: Prefs.showCounts ? LibraryCounts.recent : -1
        end: "#3A3A42"
        kind: Navigator.Recent
        start: Theme.gray
        symbol: "schedule"
        title: qsTr("Recently Inserted")
    }
    ScopeRow {
        end: Theme.blue
        kind: Navigator.Importer
        start: Theme.cyan
        symbol: "download"
        title: qsTr("Import")
    }
    ScopeRow {
        count: Prefs.showCounts ? LibraryCounts.trash : -1
        end: "#2A2A30"
        kind: Navigator.Trash
        start: "#5A5A63"
        symbol: "delete"
        title: qsTr("Trash")
    }
    Item {
        height: 33
        width: 1

        SectionLabel {
            anchors.verticalCenter: parent.verticalCenter
            anchors.verticalCenterOffset: 3
            text: qsTr("Plugins")
            x: 8
        }
    }
    PluginRow {
        end: Theme.blue
        page: "premiere"
        start: "#B38CFF"
        title: qsTr("Premiere panel")
    }
    PluginRow {
        end: Theme.teal
        page: "resolve"
        start: Theme.green
        title: qsTr("Resolve panel")
    }
}
