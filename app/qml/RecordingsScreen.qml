import QtQuick
import QtQuick.Controls

Item {
    id: screen
    objectName: "recordingsScreen"

    Theme { id: theme }
}
