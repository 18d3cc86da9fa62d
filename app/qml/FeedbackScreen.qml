import QtQuick
import QtQuick.Controls

Item {
    id: screen
    objectName: "feedbackScreen"

    Theme { id: theme }
}
