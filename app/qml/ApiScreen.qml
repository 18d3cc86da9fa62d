import QtQuick
import QtQuick.Controls

Item {
    id: screen
    objectName: "apiScreen"

    Theme { id: theme }
}
