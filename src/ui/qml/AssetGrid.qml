pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// The cards of the assets in view: as many columns as suit the wished card size, filling the width. The
// keyboard moves the focused asset. What changes on the disk leaves the visible cards where they are.
T.Control {
    id: root

    required property AssetListModel model

    readonly property int gap: Theme.space3
    readonly property int margin: 14
    // Around a card's picture, and below it with its name.
    readonly property int cardInset: 7
    readonly property int cardFooter: Prefs.showNames ? 32 : cardInset

    // Another choice of assets is coming: nothing of the view until then is worth keeping.
    function startOver() {
        glide.stop();
        view.fresh = true;
        view.contentY = view.originY - view.topMargin;
    }

    // Makes the asset of this row the focused one.
    function goTo(row: int, modifiers: int) {
        if (root.model.currentRow >= 0 && modifiers & Qt.ShiftModifier)
            root.model.click(row, Qt.ShiftModifier);
        else
            AppState.moveBy(root.model.currentRow >= 0 ? row - root.model.currentRow : 1);
        view.reveal(root.model.currentRow);
    }

    // The row a key leads to, or -1 when the key moves nothing. Lines keep the column where they can.
    function rowFor(key: int): int {
        const count = root.model.count;
        const row = root.model.currentRow;
        const lastLine = Math.floor((count - 1) / view.columns);
        const line = Math.floor(row / view.columns);
        function inLine(target) {
            return Math.min(count - 1, Math.max(0, Math.min(lastLine, target)) * view.columns + row % view.columns);
        }
        switch (key) {
        case Qt.Key_Left:
            return Math.max(0, row - 1);
        case Qt.Key_Right:
            return Math.min(count - 1, row + 1);
        case Qt.Key_Up:
            return inLine(line - 1);
        case Qt.Key_Down:
            return line === lastLine ? row : inLine(line + 1);
        case Qt.Key_PageUp:
            return inLine(line - view.linesInView);
        case Qt.Key_PageDown:
            return line === lastLine ? row : inLine(line + view.linesInView);
        case Qt.Key_Home:
            return 0;
        case Qt.Key_End:
            return count - 1;
        }
        return -1;
    }

    clip: true
    focusPolicy: Qt.StrongFocus
    focus: true

    Keys.onPressed: (event) => {
        const plain = !(event.modifiers & (Qt.ControlModifier | Qt.AltModifier | Qt.MetaModifier));
        if (event.key === Qt.Key_A && event.modifiers === Qt.ControlModifier) {
            AppState.selectAll();
        } else if (!plain || root.model.count === 0) {
            return;
        } else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
            Inserter.insertSelected();
        } else if (event.key === Qt.Key_Space) {
            AppState.togglePlay();
        } else {
            const row = root.rowFor(event.key);
            if (row < 0)
                return;
            root.goTo(row, event.modifiers);
        }
        event.accepted = true;
    }

    Connections {
        target: AppState

        function onScopeChanged() {
            root.startOver();
        }
        function onSearchChanged() {
            root.startOver();
        }
        function onSortChanged() {
            root.startOver();
        }
    }

    Connections {
        target: root.model

        function onAboutToApply() {
            view.remember();
        }
        function onApplied() {
            view.restore();
        }
    }

    ThumbnailSource {
        id: thumbnails
    }

    TapHandler {
        onTapped: root.forceActiveFocus(Qt.MouseFocusReason)
    }

    GridView {
        id: view

        readonly property int columns: Math.max(1, Math.round((width + root.gap) / (Prefs.cardSize + root.gap)))
        readonly property int cardWidth: cellWidth - root.gap
        readonly property int linesInView: Math.max(1, Math.floor(height / cellHeight))
        // Where the visible lines begin and end; moves by whole lines, so that scrolling rebinds little.
        readonly property real firstLine: lineAt(contentY)
        readonly property real endLine: lineAt(contentY + height) + cellHeight

        property bool fresh: true
        property bool anchored: false
        property location anchor
        property real anchorOffset: 0

        function lineAt(y: real): real {
            return originY + Math.floor((y - originY) / cellHeight) * cellHeight;
        }

        // Keeps in mind which card lies at the top edge, and how.
        function remember() {
            glide.stop();
            const row = Math.max(0, Math.floor((contentY - originY) / cellHeight)) * columns;
            const card = contentY > originY ? itemAtIndex(row) as AssetCard : null;
            anchored = card !== null;
            if (!card)
                return;
            anchor = card.url;
            anchorOffset = contentY - card.y;
        }

        // Puts that card back there; at the beginning the view stays at the beginning.
        function restore() {
            const atTop = fresh || !anchored;
            const row = atTop ? -1 : root.model.rowOf(anchor);
            fresh = false;
            forceLayout();
            if (atTop)
                contentY = originY - topMargin;
            else
                contentY = within(row < 0 ? contentY : originY + Math.floor(row / columns) * cellHeight + anchorOffset);
            forceLayout();
        }

        function within(y: real): real {
            const top = originY - topMargin;
            return Math.max(top, Math.min(y, originY + contentHeight + bottomMargin - height));
        }

        // Scrolls no further than is needed to see the whole card.
        function reveal(row: int) {
            if (row < 0)
                return;
            const top = originY + Math.floor(row / columns) * cellHeight;
            const from = glide.running ? glide.to : contentY;
            const to = within(Math.max(top + cellHeight + Theme.space1 - height, Math.min(from, top - topMargin)));
            glide.stop();
            if (to === contentY)
                return;
            glide.to = to;
            glide.start();
        }

        anchors.fill: parent
        anchors.leftMargin: root.margin
        anchors.rightMargin: root.margin
        topMargin: Theme.space2
        bottomMargin: root.margin - root.gap
        pixelAligned: true
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        highlightFollowsCurrentItem: false
        cellWidth: Math.floor((width + root.gap) / columns)
        cellHeight: root.cardInset + Math.round((cardWidth - 2 * root.cardInset) * 0.625) + root.cardFooter + root.gap
        cacheBuffer: 2 * cellHeight
        model: root.model
        currentIndex: root.model.currentRow
        onMovementStarted: {
            glide.stop();
            fresh = false;
        }

        Accessible.role: Accessible.List
        Accessible.name: qsTr("Assets")

        delegate: AssetCard {
            required property int index

            width: view.cardWidth
            height: view.cellHeight - root.gap
            source: thumbnails
            inView: y >= view.firstLine && y < view.endLine
            keyboard: root.activeFocus
            inset: root.cardInset
            footer: root.cardFooter
            radius: Prefs.cornerRadius
            showName: Prefs.showNames
            showBadge: Prefs.showBadges
            onClicked: (modifiers) => {
                root.forceActiveFocus(Qt.MouseFocusReason);
                root.model.click(index, modifiers);
            }
            onInsertAsked: Inserter.insertSelected()
            onFavoriteToggled: root.model.toggleFavorite(index)
        }

        NumberAnimation {
            id: glide

            target: view
            property: "contentY"
            duration: Theme.hoverTime
            easing.type: Easing.OutQuad
        }
    }
}
