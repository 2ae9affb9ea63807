pragma Singleton
pragma ComponentBehavior: Bound

import QtQuick
import Cratewell

// Colors, type and sizes of every view: the palette, what it means, then measures.
QtObject {
    id: theme

    readonly property bool dark: Prefs.colorScheme === Prefs.Dark
                                 || (Prefs.colorScheme === Prefs.System && Appearance.dark)
    readonly property bool reducedMotion: Appearance.reducedMotion

    // Palette
    readonly property color violet: "#7B5CFF"
    readonly property color pink: "#FF4ECD"
    readonly property color cyan: "#2FD6FF"
    readonly property color blue: "#4A5CFF"
    readonly property color green: "#62D991"
    readonly property color teal: "#1FA2A6"
    readonly property color amber: "#FFD27A"
    readonly property color orange: "#FF9F43"
    readonly property color gray: "#8E8E96"
    // `foreground` on the window base: white in the dark, black in the light.
    function foreground(opacity: real): color {
        return dark ? Qt.rgba(1, 1, 1, opacity) : Qt.rgba(0, 0, 0, opacity);
    }

    // Meaning
    readonly property color accent: Prefs.accent
    readonly property color accentForeground: "white"
    readonly property color windowBase: dark ? "#09090F" : "#F2F2F7"
    readonly property color panelBase: dark ? "#16161C" : "#FAFAFC"
    readonly property color text: foreground(dark ? 0.92 : 0.88)
    readonly property color textSecondary: foreground(dark ? 0.58 : 0.56)
    // Names in a long list, calmer than those above it.
    readonly property color textFolder: foreground(0.8)
    readonly property color textTertiary: foreground(0.36)
    readonly property color glassFill: dark ? Qt.rgba(1, 1, 1, 0.055) : Qt.rgba(1, 1, 1, 0.62)
    readonly property color panelFill: Prefs.glassSidebar ? glassFill : panelBase
    readonly property color glassBorder: foreground(dark ? 0.09 : 0.08)
    readonly property color controlFill: foreground(dark ? 0.075 : 0.05)
    readonly property color controlFillHover: foreground(dark ? 0.12 : 0.08)
    readonly property color controlFillPressed: foreground(dark ? 0.05 : 0.12)
    readonly property color controlBorder: foreground(0.08)
    readonly property color rowHover: foreground(dark ? 0.06 : 0.04)
    readonly property color rowSelected: foreground(dark ? 0.12 : 0.08)
    readonly property color separator: foreground(0.08)
    readonly property color track: foreground(dark ? 0.16 : 0.12)
    readonly property color popup: dark ? "#1B1B22" : "#FCFCFE"
    readonly property color popupBorder: foreground(dark ? 0.14 : 0.1)
    readonly property color scrim: dark ? Qt.rgba(0.03, 0.03, 0.05, 0.62) : Qt.rgba(0.1, 0.1, 0.14, 0.32)
    readonly property color destructive: dark ? "#FF6B6B" : "#D93A3A"
    readonly property color warning: dark ? "#FF9F43" : "#B96A12"
    readonly property color success: dark ? "#62D991" : "#1E9E57"

    // Type
    readonly property string family: "Inter"
    readonly property string iconFamily: "Material Icons"
    readonly property int titleSize: 24
    readonly property int headingSize: 15
    readonly property int bodySize: 13
    readonly property real secondarySize: 11.5
    readonly property real sectionSize: 10.5

    // Measures, in device-independent pixels
    readonly property int space1: 4
    readonly property int space2: 8
    readonly property int space3: 12
    readonly property int space4: 16
    readonly property int panelRadius: 18
    readonly property int groupRadius: 14
    readonly property int controlRadius: 10
    readonly property int badgeRadius: 6
    readonly property int controlHeight: 30
    readonly property int sidebarWidth: 250
    readonly property int inspectorWidth: 400

    // Motion, in milliseconds
    readonly property int hoverTime: reducedMotion ? 0 : 120
    readonly property int panelTime: reducedMotion ? 0 : 220
}
