import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// The share of each rhythm in every channel's spectrum: one row per channel, one bar per
// rhythm, each bar spanning 0-100 %.
ColumnLayout {
    id: bars
    objectName: "rhythmBars"

    property alias model: rows.model
    readonly property var rhythms: ["delta", "theta", "alpha", "beta", "gamma"]
    readonly property var rhythmTitles: [qsTr("Delta"), qsTr("Theta"), qsTr("Alpha"), qsTr("Beta"), qsTr("Gamma")]
    readonly property real nameWidth: nameMetrics.advanceWidth + theme.spacing

    spacing: theme.spacing

    Theme { id: theme }

    TextMetrics {
        id: nameMetrics
        font: theme.metrics.font
        text: "Ch000"
    }

    // The legend doubles as the column headers.
    RowLayout {
        objectName: "rhythmLegend"
        spacing: Math.round(theme.spacing / 2)
        Layout.fillWidth: true
        Item { Layout.preferredWidth: bars.nameWidth }
        Repeater {
            model: bars.rhythms.length
            delegate: LegendItem {
                required property int index
                text: bars.rhythmTitles[index]
                color: theme.rhythmColors[bars.rhythms[index]]
                Layout.fillWidth: true
                Layout.preferredWidth: 1
            }
        }
    }

    ListView {
        id: rows
        objectName: "rhythmRows"
        clip: true
        spacing: Math.round(theme.unit * 0.3)
        boundsBehavior: Flickable.StopAtBounds
        Layout.fillWidth: true
        Layout.fillHeight: true
        ScrollBar.vertical: ScrollBar {}

        delegate: RowLayout {
            id: row
            required property string name
            required property real delta
            required property real theta
            required property real alpha
            required property real beta
            required property real gamma
            readonly property var values: [delta, theta, alpha, beta, gamma]

            width: ListView.view.width
            spacing: Math.round(theme.spacing / 2)

            Label {
                text: row.name
                font.bold: true
                elide: Text.ElideRight
                Layout.preferredWidth: bars.nameWidth
            }
            Repeater {
                model: bars.rhythms.length
                delegate: Rectangle {
                    id: track
                    required property int index
                    readonly property real value: row.values[index]
                    readonly property color barColor: theme.rhythmColors[bars.rhythms[index]]

                    color: Qt.rgba(barColor.r, barColor.g, barColor.b, 0.12)
                    radius: Math.round(theme.unit * 0.15)
                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    // Rows share the panel's height, within readable limits.
                    implicitHeight: Math.round(Math.max(theme.unit * 1.3, Math.min(theme.unit * 2.2,
                                                        (rows.height - rows.spacing * rows.count) / Math.max(1, rows.count))))

                    Rectangle {
                        id: fill
                        anchors { left: parent.left; top: parent.top; bottom: parent.bottom }
                        width: track.value > 0 ? parent.width * Math.min(100, track.value) / 100 : 0
                        radius: parent.radius
                        color: track.barColor
                        opacity: 0.85
                    }
                    Text {
                        id: percent
                        anchors { right: parent.right; rightMargin: Math.round(theme.unit * 0.2); verticalCenter: parent.verticalCenter }
                        text: track.value < 0 ? "—" : qsTr("%1 %").arg(Math.round(track.value))
                        color: theme.text
                        font.pointSize: theme.basePointSize * 0.85
                    }
                    // The part of the number over the bar, dark, so it reads on any colour.
                    Item {
                        anchors { left: parent.left; top: parent.top; bottom: parent.bottom }
                        width: fill.width
                        clip: true
                        Text {
                            x: percent.x
                            y: percent.y
                            text: percent.text
                            font: percent.font
                            color: theme.accentText
                        }
                    }
                }
            }
        }

        Label {
            anchors.centerIn: parent
            visible: rows.count === 0
            text: qsTr("No channels")
            color: theme.dimText
        }
    }
}
