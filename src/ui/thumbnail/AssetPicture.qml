pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// What is in an asset's file: its picture, or the waveform of a sound.
ThumbnailItem {
    id: picture

    iconFamily: Theme.iconFamily

    WaveformItem {
        anchors.fill: parent
        source: picture.source
        url: picture.url
        visible: picture.kind === Vocabulary.AssetKind.Audio
        waveStyle: Prefs.waveStyle
    }
}
