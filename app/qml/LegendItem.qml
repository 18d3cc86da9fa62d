import QtQuick
import QtQuick.Controls

// A colour swatch with the name of what that colour draws.
Row {
    id: item

    property alias text: label.text
    property color color

    spacing: Math.round(theme.unit * 0.3)

    Theme { id: theme }

    Rectangle {
        width: Math.round(theme.unit * 0.9)
        height: Math.max(2, Math.round(theme.unit * 0.25))
        radius: height / 2
        color: item.color
        anchors.verticalCenter: parent.verticalCenter
    }
    Label {
        id: label
        color: theme.text
        anchors.verticalCenter: parent.verticalCenter
    }
}
