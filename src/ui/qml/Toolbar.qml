pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Heads the grid: what it shows, how much, and the controls for it. As it gets narrower, buttons lose their
// text, then the search field shrinks, then the card size hides; the title takes what is left.
Item {
    id: toolbar

    required property Window window
    required property Commands commands

    readonly property int gap: Theme.space2
    readonly property int searchWidest: 220
    readonly property int searchNarrowest: 112
    readonly property real titleWidth: Math.max(title.implicitWidth, countLine.implicitWidth)
    // What stands beside the buttons' texts, the search field and the card size.
    readonly property real fixedWidth: titleWidth + 2 * 33 + sortButton.fullWidth + 33 + 5 * gap + 8
    readonly property real cardSizeWidth: cardSize.implicitWidth + gap
    readonly property bool fullButtons: width >= fixedWidth + cardSizeWidth + searchWidest
                                        + newFolderButton.textWidth + importButton.textWidth
    readonly property bool showCardSize: width >= fixedWidth + cardSizeWidth + searchNarrowest
    readonly property bool fullSort: showCardSize || width >= fixedWidth + searchNarrowest

    function focusSearch(): void {
        searchField.forceActiveFocus(Qt.ShortcutFocusReason);
        searchField.selectAll();
    }

    component ToolButton: GlassButton {
        readonly property real textWidth: fullWidth - 33
        readonly property real fullWidth: metrics.width + 46
        readonly property TextMetrics metrics: TextMetrics {
            font.family: Theme.family
            font.pixelSize: Theme.bodySize
            font.weight: Font.DemiBold
        }

        anchors.verticalCenter: parent?.verticalCenter
        metrics.text: text
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

        ToolButton {
            id: newFolderButton

            compact: !toolbar.fullButtons
            enabled: toolbar.commands.newFolder.enabled
            symbol: "create_new_folder"
            text: qsTr("New Folder")

            onClicked: toolbar.commands.newFolder.triggered()
        }
        ToolButton {
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
                            Math.min(toolbar.searchWidest, toolbar.width - toolbar.fixedWidth
                                     - (toolbar.showCardSize ? toolbar.cardSizeWidth : 0)))

            onTextEdited: AppState.search = text
        }
        SortButton {
            id: sortButton

            readonly property real fullWidth: 90

            compact: !toolbar.fullSort
            order: AppState.sort

            onChosen: order => AppState.sort = order
        }
        CardSizeControl {
            id: cardSize

            anchors.verticalCenter: parent.verticalCenter
            size: Prefs.cardSize
            visible: toolbar.showCardSize

            onChosen: size => Prefs.cardSize = size
        }
        GlassButton {
            compact: true
            helpText: qsTr("Show or hide the preview")
            symbol: "vertical_split"

            Accessible.checkable: true
            Accessible.checked: AppState.showInspector

            onClicked: AppState.showInspector = !AppState.showInspector
        }
    }
}
