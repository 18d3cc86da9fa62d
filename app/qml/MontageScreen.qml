import QtQuick
import QtQuick.Controls

Item {
    id: screen
    objectName: "montageScreen"

    Theme { id: theme }
}
