pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Heads the grid: what it shows, how much, and the controls for it. As it gets narrower, buttons lose their
// text, the search field shrinks to its placeholder, the card size shrinks and hides, and only then is the
// placeholder cut; the title takes what is left.
Item {
    id: toolbar

    required property Window window
    required property Commands commands

    readonly property int gap: Theme.space2
    readonly property int searchWidest: 220
    readonly property int searchNarrowest: 88
    readonly property real titleWidth: Math.max(title.implicitWidth, countLine.implicitWidth)
    // The card size without its slider.
    readonly property real signsWidth: cardSize.signsWidth + gap
    // What title, compact buttons, the sort button in full, margins and gaps leave for the search field, the
    // card size and the buttons' texts.
    readonly property real room: width - titleWidth - newFolderButton.compactWidth - importButton.compactWidth
                                 - sortButton.fullWidth - inspectorButton.width - 5 * gap - 14
    readonly property real textsWidth: newFolderButton.fullWidth + importButton.fullWidth
                                       - newFolderButton.compactWidth - importButton.compactWidth
    readonly property bool fullButtons: room >= searchWidest + signsWidth + cardSize.longest + textsWidth
    readonly property bool showCardSize: room >= searchField.wholeWidth + signsWidth + cardSize.shortest
    readonly property bool fullSort: room >= searchNarrowest

    readonly property real importMenuX: controls.x + importButton.x
    readonly property real importMenuY: controls.y + importButton.y + importButton.height + 4

    function focusSearch(): void {
        searchField.forceActiveFocus(Qt.ShortcutFocusReason);
        searchField.selectAll();
    }

    height: 56

    WindowDragArea {
        anchors.fill: parent
        window: toolbar.window
    }

    Label {
        id: title

        anchors.left: parent.left
        anchors.leftMargin: 8
        anchors.right: controls.left
        anchors.rightMargin: toolbar.gap
        font.letterSpacing: -0.4
        font.pixelSize: Theme.titleSize
        font.weight: Font.ExtraBold
        text: AppState.scopeTitle
        y: 5

        Accessible.role: Accessible.Heading
    }
    Label {
        id: countLine

        anchors.left: title.left
        anchors.right: title.right
        color: Theme.textSecondary
        font.pixelSize: 11
        text: qsTr("%1 assets").arg(AppState.visibleCount)
        y: 34
    }

    Row {
        id: controls

        anchors.right: parent.right
        anchors.rightMargin: 6
        anchors.verticalCenter: parent.verticalCenter
        spacing: toolbar.gap

        GlassButton {
            id: newFolderButton

            compact: !toolbar.fullButtons
            enabled: toolbar.commands.newFolder.enabled
            symbol: "create_new_folder"
            text: qsTr("New Folder")

            onClicked: toolbar.commands.newFolder.triggered()
        }
        GlassButton {
            id: importButton

            compact: !toolbar.fullButtons
            enabled: toolbar.commands.importAssets.enabled
            prominent: true
            symbol: "add"
            text: qsTr("Import")

            onClicked: toolbar.commands.importAssets.triggered()
        }
        SearchField {
            id: searchField

            placeholderText: qsTr("Search the vault")
            text: AppState.search
            width: Math.max(toolbar.searchNarrowest,
                            Math.min(toolbar.searchWidest,
                                     toolbar.room - (toolbar.showCardSize ? toolbar.signsWidth + cardSize.length : 0)))

            onTextChanged: AppState.search = text
        }
        SortButton {
            id: sortButton

            anchors.verticalCenter: parent.verticalCenter
            compact: !toolbar.fullSort
            labels: Navigator.orderLabels
            order: Navigator.order

            onChosen: order => Navigator.order = order
        }
        CardSizeControl {
            id: cardSize

            anchors.verticalCenter: parent.verticalCenter
            length: Math.max(shortest, Math.min(longest, toolbar.room - searchField.wholeWidth - toolbar.signsWidth))
            size: Prefs.cardSize
            visible: toolbar.showCardSize

            onChosen: size => Prefs.cardSize = size
        }
        GlassButton {
            id: inspectorButton

            checked: AppState.showInspector
            compact: true
            helpText: qsTr("Show or hide the preview")
            symbol: "view_sidebar"

            onClicked: AppState.showInspector = !AppState.showInspector
        }
    }
}
