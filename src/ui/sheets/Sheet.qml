pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Cratewell

// A question over the window: a title, what belongs to it, and two buttons. Return confirms and Escape cancels.
T.Popup {
    id: sheet

    required property string title
    required property string confirmText
    property bool confirmable: true
    property bool destructive: false
    default property alias body: column.data

    property bool answered: false

    // It can be seen and has the keyboard.
    signal shown
    signal confirmed

    function confirm(): void {
        if (!confirmable || answered)
            return;
        answered = true;
        confirmed();
        close();
    }

    closePolicy: T.Popup.CloseOnEscape
    focus: true
    height: content.height + topPadding + bottomPadding
    modal: true
    padding: Theme.space4 + 4
    visible: true
    width: Math.min(400, parent.width - 64)
    x: Math.round((parent.width - width) / 2)
    y: Math.max(32, Math.round((parent.height - height) / 2) - 60)

    // The item that has the keyboard is the popup's own, which cannot be named where it is declared.
    onAboutToShow: contentItem.parent.Accessible.name = title
    onAboutToHide: answered = true
    onVisibleChanged: {
        if (!visible)
            return;
        scope.forceActiveFocus(Qt.PopupFocusReason);
        shown();
    }

    T.Overlay.modal: Rectangle { color: Theme.scrim }

    background: Rectangle {
        border.color: Theme.popupBorder
        color: Theme.popup
        radius: Theme.panelRadius

        SoftShadow {
            anchors.fill: parent
            anchors.margins: -blur
            blur: 48
            color: Qt.rgba(0, 0, 0, Theme.dark ? 0.6 : 0.28)
            drop: 16
            radius: Theme.panelRadius
        }
    }
    contentData: FocusScope {
        id: scope

        focus: true
        height: content.height
        width: sheet.availableWidth

        Keys.onEnterPressed: sheet.confirm()
        Keys.onReturnPressed: sheet.confirm()

        Column {
            id: content

            spacing: Theme.space3
            width: parent.width

            Label {
                font.pixelSize: Theme.headingSize
                font.weight: Font.Bold
                text: sheet.title
                width: parent.width

                Accessible.role: Accessible.Heading
            }
            Column {
                id: column

                spacing: Theme.space2
                width: parent.width
            }
            Item {
                height: Theme.space1
                width: 1
            }
            Row {
                anchors.right: parent.right
                spacing: Theme.space2

                GlassButton {
                    text: qsTr("Cancel")

                    onClicked: sheet.close()
                }
                GlassButton {
                    destructive: sheet.destructive
                    enabled: sheet.confirmable
                    prominent: !sheet.destructive
                    text: sheet.confirmText

                    onClicked: sheet.confirm()
                }
            }
        }
    }
    enter: Transition {
        NumberAnimation {
            duration: Theme.panelTime
            easing.type: Easing.OutCubic
            from: 0
            property: "opacity"
            to: 1
        }
    }
    exit: Transition {
        NumberAnimation { duration: Theme.hoverTime; from: 1; property: "opacity"; to: 0 }
    }
}
