pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// What is known of the focused asset's file, in two columns.
Column {
    id: view

    readonly property int labelWidth: 86

    spacing: 6

    Repeater {
        model: MetadataModel

        Item {
            id: row

            required property string label
            required property string value

            height: text.height
            width: view.width

            Accessible.name: qsTr("%1: %2").arg(label).arg(value)
            Accessible.role: Accessible.StaticText

            Label {
                color: Theme.textTertiary
                font.pixelSize: Theme.secondarySize
                text: row.label
                width: view.labelWidth - Theme.space2

                Accessible.ignored: true
            }
            Label {
                id: text

                elide: Text.ElideMiddle
                font.pixelSize: Theme.secondarySize
                text: row.value
                width: parent.width - x
                x: view.labelWidth

                Accessible.ignored: true
            }
        }
    }
}
