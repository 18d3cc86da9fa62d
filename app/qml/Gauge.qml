import QtQuick
import QtQuick.Controls
import QtQuick.Shapes

// A 0-100 dial: a three-quarter arc filled up to the value, the value in its middle and the
// name under it. A negative value means none yet: an empty arc and a dash.
Item {
    id: gauge

    property real value: -1
    property string label
    property color color: theme.accent

    readonly property bool hasValue: value >= 0
    readonly property real shown: hasValue ? Math.max(0, Math.min(100, value)) : 0
    readonly property real size: Math.min(width, height)
    readonly property real thickness: Math.max(4, Math.round(size * 0.08))
    readonly property real sweep: 270

    implicitWidth: theme.unit * 12
    implicitHeight: theme.unit * 12

    Theme { id: theme }

    Shape {
        id: shape
        anchors.centerIn: parent
        width: gauge.size
        height: gauge.size
        // Smooth edges under every renderer.
        layer.enabled: true
        layer.samples: 4

        ShapePath {
            strokeColor: theme.raised
            strokeWidth: gauge.thickness
            fillColor: "transparent"
            capStyle: ShapePath.RoundCap
            PathAngleArc {
                centerX: shape.width / 2
                centerY: shape.height / 2
                radiusX: (shape.width - gauge.thickness) / 2
                radiusY: radiusX
                startAngle: 135
                sweepAngle: gauge.sweep
            }
        }
        ShapePath {
            strokeColor: gauge.shown > 0 ? gauge.color : "transparent"
            strokeWidth: gauge.thickness
            fillColor: "transparent"
            capStyle: ShapePath.RoundCap
            PathAngleArc {
                centerX: shape.width / 2
                centerY: shape.height / 2
                radiusX: (shape.width - gauge.thickness) / 2
                radiusY: radiusX
                startAngle: 135
                sweepAngle: gauge.sweep * gauge.shown / 100
            }
        }
    }

    Column {
        anchors.centerIn: shape
        anchors.verticalCenterOffset: gauge.size * 0.02
        Label {
            objectName: "gaugeValue"
            anchors.horizontalCenter: parent.horizontalCenter
            text: gauge.hasValue ? Math.round(gauge.shown) : "—"
            color: gauge.hasValue ? theme.text : theme.dimText
            font.pointSize: Math.max(theme.basePointSize, theme.basePointSize * gauge.size / (theme.unit * 5))
            font.bold: true
        }
        Label {
            objectName: "gaugeLabel"
            anchors.horizontalCenter: parent.horizontalCenter
            text: gauge.label
            color: gauge.color
            font.pointSize: Math.max(theme.basePointSize, theme.basePointSize * gauge.size / (theme.unit * 14))
        }
    }
}
