import QtQuick
import QtQuick.Controls
import QtQuick.Shapes

// A large transport button: a drawn symbol (record, pause, play, stop) beside its text, so it
// needs no icon font.
Button {
    id: button

    // "record", "pause", "play" or "stop".
    property string symbol: "record"
    property color symbolColor: theme.text
    readonly property real glyphSize: Math.round(theme.unit * 0.9)

    Theme { id: theme }

    font.pointSize: theme.basePointSize * 1.15
    padding: Math.round(theme.unit * 0.6)
    leftPadding: theme.unit
    rightPadding: theme.unit

    contentItem: Row {
        spacing: Math.round(theme.unit * 0.5)
        opacity: button.enabled ? 1 : 0.4

        Item {
            width: button.glyphSize
            height: width
            anchors.verticalCenter: parent.verticalCenter

            Rectangle {
                visible: button.symbol === "record"
                anchors.fill: parent
                radius: width / 2
                color: button.symbolColor
            }
            Rectangle {
                visible: button.symbol === "stop"
                anchors.fill: parent
                anchors.margins: Math.round(parent.width * 0.08)
                radius: Math.round(width * 0.12)
                color: button.symbolColor
            }
            Row {
                visible: button.symbol === "pause"
                anchors.centerIn: parent
                spacing: Math.round(button.glyphSize * 0.22)
                Repeater {
                    model: 2
                    Rectangle {
                        width: Math.round(button.glyphSize * 0.28)
                        height: button.glyphSize
                        radius: 1
                        color: button.symbolColor
                    }
                }
            }
            Shape {
                visible: button.symbol === "play"
                anchors.fill: parent
                layer.enabled: true
                layer.samples: 4
                ShapePath {
                    fillColor: button.symbolColor
                    strokeColor: "transparent"
                    startX: button.glyphSize * 0.1; startY: 0
                    PathLine { x: button.glyphSize; y: button.glyphSize / 2 }
                    PathLine { x: button.glyphSize * 0.1; y: button.glyphSize }
                    PathLine { x: button.glyphSize * 0.1; y: 0 }
                }
            }
        }
        Text {
            text: button.text
            font: button.font
            color: theme.text
            anchors.verticalCenter: parent.verticalCenter
        }
    }
}
