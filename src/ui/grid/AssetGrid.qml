pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// The cards of the assets in view, in as many columns as suit the requested card size. The keyboard moves the
// focused asset. What changes on the disk leaves the visible cards where they are.
T.Control {
    id: grid

    readonly property int columns: view.columns
    readonly property int gap: Theme.space3
    // How far the glow of a selected card may reach beyond the grid.
    readonly property int spill: Theme.space3
    // Around a card's picture, and below it with its name.
    readonly property int cardInset: 7
    readonly property int cardFooter: Prefs.showNames ? 32 : cardInset
    readonly property int barHeight: 46
    // What floats over the lower edge takes this much.
    readonly property int barSpace: bar.wanted ? barHeight + Theme.space3 : 0

    // False for a key that moves nothing. The first press of a key that moves by steps only starts.
    function move(key: int, modifiers: int): bool {
        const row = steps.rowFor(key, assets.currentRow);
        if (row < 0)
            return false;
        if (assets.currentRow < 0)
            AppState.moveBy(key === Qt.Key_End ? assets.count : 1);
        else if (modifiers & Qt.ShiftModifier)
            assets.click(row, Qt.ShiftModifier);
        else
            AppState.moveBy(row - assets.currentRow);
        view.reveal(assets.currentRow);
        return true;
    }

    // `at` is where in the grid.
    function showMenu(row: int, at: point): void {
        forceActiveFocus(Qt.PopupFocusReason);
        assets.pick(row);
        cardMenu.x = at.x;
        cardMenu.y = at.y;
        cardMenu.reopen();
    }
    function showMenuAtFocus(): void {
        const card = view.itemAtIndex(assets.currentRow);
        if (card)
            showMenu(assets.currentRow, mapFromItem(card, card.width / 2, card.height / 2));
    }

    focusPolicy: Qt.StrongFocus
    objectName: "assetGrid"

    // A control's own role wins on Qt 6.4, so that assistive tools meet the view instead.
    Accessible.ignored: true

    Keys.onPressed: event => {
        const other = Qt.ControlModifier | Qt.AltModifier | Qt.MetaModifier;
        if (event.modifiers & other || assets.count === 0)
            return;
        else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
            Inserter.insertSelected();
        else if (event.key === Qt.Key_Space)
            AppState.togglePlay();
        else if (event.key === Qt.Key_Menu || (event.key === Qt.Key_F10
                                                && event.modifiers & Qt.ShiftModifier))
            showMenuAtFocus();
        else if (event.key === Qt.Key_Escape && AppState.selectedCount > 1)
            AppState.clearSelected();
        else if (!move(event.key, event.modifiers))
            return;
        event.accepted = true;
    }

    AssetListModel {
        id: assets

        prefs: Prefs
        state: AppState

        onAboutToApply: newCount => view.remember(newCount)
        onApplied: view.restore()
    }
    GridNavigation {
        id: steps

        columns: grid.columns
        count: assets.count
        linesInView: view.linesInView
    }

    Connections {
        function onScopeChanged() { view.startOver(); }
        function onSearchChanged() { view.startOver(); }
        function onSortChanged() { view.startOver(); }

        target: AppState
    }
    TapHandler {
        onTapped: grid.forceActiveFocus(Qt.MouseFocusReason)
    }
    FocusRing {
        anchors.margins: 0
        radius: Theme.panelRadius
        shown: grid.visualFocus && assets.currentRow < 0
    }
    Item {
        anchors.fill: parent
        anchors.leftMargin: -grid.spill
        anchors.rightMargin: -grid.spill
        clip: true

        GridView {
            id: view

            // Every cell has its gap on the right, the last one beyond the cards' right edge.
            readonly property int columns: Math.max(1, Math.round(width / (Prefs.cardSize + grid.gap)))
            readonly property int cardWidth: cellWidth - grid.gap
            readonly property int linesInView: Math.floor(height / cellHeight)
            // Where the visible lines begin and end; whole lines, so that scrolling rebinds little.
            readonly property real firstLine: lineAt(contentY)
            readonly property real endLine: lineAt(contentY + height) + cellHeight

            property bool anchored: false
            property location anchor
            property real anchorOffset: 0

            function lineAt(y: real): real {
                return originY + Math.floor((y - originY) / cellHeight) * cellHeight;
            }
            function within(y: real): real {
                const end = originY + contentHeight + bottomMargin - height;
                return Math.max(originY - topMargin, Math.min(y, end));
            }
            // Another choice of assets comes or has just come.
            function startOver(): void {
                glide.stop();
                contentY = originY - topMargin;
            }
            // Keeps in mind which card lies at the top edge, and how. At the very top nothing is kept, so
            // that what is new there shows.
            function remember(newCount: int): void {
                glide.stop();
                const row = Math.max(0, Math.floor((contentY - originY) / cellHeight)) * columns;
                anchored = contentY > originY && row < assets.count;
                if (!anchored)
                    return;
                anchor = assets.urlAt(row);
                anchorOffset = (contentY - originY) % cellHeight;
                // Far below a list that shrinks the view would make every card on the way.
                const newHeight = Math.ceil(newCount / columns) * cellHeight;
                if (newCount < assets.count && contentY - originY > newHeight - height)
                    contentY = Math.max(originY - topMargin, originY + newHeight - height);
            }
            function restore(): void {
                const row = anchored ? assets.rowOf(anchor) : -1;
                forceLayout();
                if (row >= 0)
                    contentY = within(originY + Math.floor(row / columns) * cellHeight + anchorOffset);
                else
                    contentY = anchored ? within(contentY) : originY - topMargin;
                forceLayout();
            }
            // Scrolls no further than it takes to see the whole card.
            function reveal(row: int): void {
                const top = originY + Math.floor(row / columns) * cellHeight;
                const from = glide.running ? glide.to : contentY;
                const to = within(Math.max(top + cellHeight - height, Math.min(from, top - topMargin)));
                glide.stop();
                if (row < 0 || to === contentY)
                    return;
                glide.to = to;
                glide.start();
            }

            anchors.fill: parent
            anchors.leftMargin: grid.spill + 2
            anchors.rightMargin: grid.spill + 2 - grid.gap
            // The last line can be scrolled free of what floats over it.
            bottomMargin: bar.wanted ? grid.barSpace + Theme.space3 : Theme.space1
            boundsBehavior: Flickable.StopAtBounds
            cacheBuffer: 2 * cellHeight
            cellHeight: grid.cardInset + Math.round((cardWidth - 2 * grid.cardInset) * 0.625)
                        + grid.cardFooter + grid.gap
            cellWidth: Math.floor(width / columns)
            currentIndex: assets.currentRow
            highlightFollowsCurrentItem: false
            keyNavigationEnabled: false
            model: assets
            pixelAligned: true
            topMargin: Theme.space2

            Accessible.focusable: true
            Accessible.focused: grid.activeFocus
            Accessible.name: qsTr("Assets")
            Accessible.role: Accessible.List

            onMovementStarted: glide.stop()

            delegate: AssetCard {
                id: card

                required property int index

                footer: grid.cardFooter
                height: view.cellHeight - grid.gap
                inView: y >= view.firstLine && y < view.endLine
                inset: grid.cardInset
                keyboard: grid.activeFocus
                radius: Prefs.cornerRadius
                showBadge: Prefs.showBadges
                scrubs: Prefs.hoverScrub
                showName: Prefs.showNames
                source: VaultThumbnails
                width: view.cardWidth

                onClicked: modifiers => {
                    grid.forceActiveFocus(Qt.MouseFocusReason);
                    assets.click(index, modifiers);
                }
                onHoveredChanged: {
                    if (hovered)
                        star.card = card;
                    else if (star.card === card)
                        star.card = null;
                }
                onDragAsked: {
                    grid.forceActiveFocus(Qt.MouseFocusReason);
                    assets.pick(index);
                    DragController.start(card);
                }
                onInsertAsked: Inserter.insertSelected()
                onMenuAsked: at => grid.showMenu(index, grid.mapFromItem(card, at))
            }

            CardStar {
                id: star

                card: null

                onToggled: AssetActions.toggleFavorite(card.url)
            }

            T.ScrollBar.vertical: ThinScrollBar {
                height: parent.height
                parent: view.parent
                x: parent.width - width
            }

            NumberAnimation {
                id: glide

                duration: Theme.hoverTime
                easing.type: Easing.OutQuad
                property: "contentY"
                target: view
            }
        }
    }
    GridNotice {
        anchors.centerIn: parent
        wanted: assets.count === 0 && EmptyStateModel.known
        width: Math.min(300, parent.width - 2 * Theme.space4)
    }
    OnDemand {
        id: bar

        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.space3
        anchors.horizontalCenter: parent.horizontalCenter
        focusAfter: grid
        height: grid.barHeight
        wanted: AssetActions.countInView > 1
        width: made?.width ?? 0

        content: SelectionBar { height: grid.barHeight }
    }
    GridDrops { anchors.fill: parent }
    PopupHost {
        id: cardMenu

        popup: CardMenu {}
    }
}
