pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// The window. Closing it hides it; the program runs on.
T.ApplicationWindow {
    id: window

    readonly property bool typing: (activeFocusItem as TextInput) !== null
                                   || (activeFocusItem as TextEdit) !== null

    color: Theme.windowBase
    flags: Qt.Window | Qt.FramelessWindowHint
    height: 840
    minimumHeight: 640
    minimumWidth: 1040
    title: "Cratewell"
    visible: true
    width: 1320

    background: Backdrop {
        accent: Theme.accent
        base: Theme.windowBase
        dark: Theme.dark
        intensity: Prefs.bgIntensity
        style: Prefs.background
    }

    Commands {
        id: commands

        typing: window.typing

        onImportWanted: mainArea.offerImport()
        onSettingsWanted: settings.open()
    }
    Shortcut {
        sequence: "Ctrl+F"

        onActivated: mainArea.focusSearch()
    }

    FocusScope {
        id: content

        anchors.fill: parent
        anchors.margins: Theme.space3
        focus: true

        Sidebar {
            id: sidebar

            anchors.bottom: parent.bottom
            anchors.top: parent.top
            commands: commands
            width: Theme.sidebarWidth
            window: window
        }
        MainArea {
            id: mainArea

            anchors.bottom: parent.bottom
            anchors.left: sidebar.right
            anchors.leftMargin: Theme.space3
            anchors.right: parent.right
            anchors.rightMargin: AppState.showInspector ? Theme.inspectorWidth + Theme.space3 : 0
            anchors.top: parent.top
            commands: commands
            focus: true
            window: window
        }
        Inspector {
            id: inspector

            // How far it has come in: 0 away, 1 in place.
            property real presence: AppState.showInspector ? 1 : 0

            anchors.bottom: parent.bottom
            anchors.top: parent.top
            opacity: presence
            visible: presence > 0
            width: Theme.inspectorWidth
            x: parent.width - width + (1 - presence) * 48

            Behavior on presence {
                NumberAnimation { duration: Theme.panelTime; easing.type: Easing.OutCubic }
            }
        }
    }

    ToastView {
        action: Notifications.toastAction
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 30 + mainArea.occupiedHeight
        anchors.horizontalCenter: parent.horizontalCenter
        ok: Notifications.toastOk
        text: Notifications.toastText
        widest: parent.width - 80

        onActed: Notifications.takeToastAction()
    }
    ResizeEdges { window: window }
    PopupHost {
        id: settings

        anchors.fill: parent

        popup: SettingsWindow {}
    }
    SheetHost {
        anchors.fill: parent
        wanted: AppState.showNewFolder

        popup: NewFolderSheet {}
    }
    SheetHost {
        anchors.fill: parent
        wanted: AppState.renaming

        popup: RenameSheet {}
    }
}
