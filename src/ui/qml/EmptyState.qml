pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// What a view shows instead of nothing: a tinted tile, one sentence, at most one action.
Column {
    id: empty

    required property string icon
    required property color tintStart
    required property color tintEnd
    required property string title
    required property string sentence
    property string action

    signal acted

    spacing: Theme.space3

    Accessible.role: Accessible.StaticText
    Accessible.name: qsTr("%1. %2").arg(title).arg(sentence)

    Rectangle {
        anchors.horizontalCenter: parent.horizontalCenter
        width: 72
        height: 72
        radius: 20
        gradient: Gradient {
            GradientStop {
                position: 0
                color: empty.tintStart
            }
            GradientStop {
                position: 1
                color: empty.tintEnd
            }
        }

        Text {
            anchors.centerIn: parent
            font.family: Theme.iconFamily
            font.pixelSize: 36
            color: "white"
            text: empty.icon
        }
    }

    Text {
        width: parent.width
        topPadding: Theme.space1
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        font.family: Theme.family
        font.pixelSize: Theme.headingSize
        font.weight: Font.Bold
        color: Theme.text
        textFormat: Text.PlainText
        text: empty.title
    }

    Text {
        width: parent.width
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        font.family: Theme.family
        font.pixelSize: Theme.bodySize
        lineHeight: 1.25
        color: Theme.textSecondary
        textFormat: Text.PlainText
        text: empty.sentence
    }

    GlassButton {
        anchors.horizontalCenter: parent.horizontalCenter
        visible: empty.action !== ""
        text: empty.action
        onClicked: empty.acted()
    }
}
