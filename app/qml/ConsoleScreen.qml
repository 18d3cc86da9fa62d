import QtQuick
import QtQuick.Controls

Item {
    id: screen
    objectName: "consoleScreen"

    Theme { id: theme }
}
