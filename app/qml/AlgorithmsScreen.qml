import QtQuick
import QtQuick.Controls

Item {
    id: screen
    objectName: "algorithmsScreen"

    Theme { id: theme }
}
