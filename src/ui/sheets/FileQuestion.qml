pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Dialogs

// The program's own dialog for choosing files.
FileDialog {
    property bool several: false
    property bool imagesOnly: false

    fileMode: several ? FileDialog.OpenFiles : FileDialog.OpenFile
    nameFilters: imagesOnly ? [qsTr("Images") + " (*.png *.jpg *.jpeg *.tif *.tiff *.webp *.heic *.bmp)"] : []
}
