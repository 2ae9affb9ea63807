pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Dialogs

// The program's own dialog for choosing a folder.
FolderDialog {}
