import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import OrvexPro.Plots 1.0

// Meditation and concentration now and over the last minutes, and the custom algorithms.
Item {
    id: screen
    objectName: "indicesScreen"

    Theme { id: theme }

    GridLayout {
        id: content
        anchors.fill: parent
        anchors.margins: theme.padding
        columns: 2
        rowSpacing: theme.spacing
        columnSpacing: theme.spacing

        Panel {
            title: qsTr("Now")
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.preferredWidth: (content.width - content.columnSpacing) * 0.68
            Layout.preferredHeight: (content.height - content.rowSpacing) * 0.55

            RowLayout {
                spacing: theme.unit
                Layout.fillWidth: true
                Layout.fillHeight: true

                Gauge {
                    objectName: "meditationGauge"
                    value: ui.indices.meditation
                    label: qsTr("Meditation")
                    color: theme.meditation
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.minimumHeight: theme.unit * 6
                }
                Gauge {
                    objectName: "concentrationGauge"
                    value: ui.indices.concentration
                    label: qsTr("Concentration")
                    color: theme.concentration
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.minimumHeight: theme.unit * 6
                }
            }
        }

        Panel {
            title: qsTr("Custom algorithms")
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.preferredWidth: (content.width - content.columnSpacing) * 0.32
            Layout.preferredHeight: (content.height - content.rowSpacing) * 0.55
            Layout.minimumWidth: theme.unit * 14

            ListView {
                id: algorithms
                objectName: "algorithmList"
                model: ui.indices.algorithms
                clip: true
                spacing: Math.round(theme.unit * 0.3)
                boundsBehavior: Flickable.StopAtBounds
                Layout.fillWidth: true
                Layout.fillHeight: true
                ScrollBar.vertical: ScrollBar {}

                delegate: RowLayout {
                    id: algorithm
                    required property string name
                    required property real value
                    width: ListView.view.width
                    spacing: theme.spacing
                    Label {
                        text: algorithm.name
                        color: theme.dimText
                        elide: Text.ElideRight
                        Layout.fillWidth: true
                    }
                    Label {
                        text: Number(algorithm.value).toLocaleString(Qt.locale(), "f", 2)
                        font.bold: true
                    }
                }

                Label {
                    anchors.centerIn: parent
                    width: parent.width
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.WordWrap
                    visible: algorithms.count === 0
                    text: qsTr("No custom algorithms")
                    color: theme.dimText
                }
            }
        }

        Panel {
            title: qsTr("Last %1 minutes").arg(Math.round(ui.indices.historySeconds / 60))
            Layout.columnSpan: 2
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.preferredHeight: (content.height - content.rowSpacing) * 0.45

            Row {
                objectName: "indexLegend"
                spacing: theme.unit
                Layout.leftMargin: percentAxis.width + Math.round(theme.spacing / 2)
                LegendItem { text: qsTr("Meditation"); color: theme.meditation }
                LegendItem { text: qsTr("Concentration"); color: theme.concentration }
            }
            GridLayout {
                columns: 2
                rowSpacing: Math.round(theme.spacing / 2)
                columnSpacing: Math.round(theme.spacing / 2)
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.minimumHeight: theme.unit * 5

                Axis {
                    id: percentAxis
                    objectName: "indexAxis"
                    orientation: Qt.Vertical
                    minimum: 0
                    maximum: 100
                    divisionStep: 10
                    Layout.fillHeight: true
                }
                Rectangle {
                    color: theme.plotBackground
                    Layout.fillWidth: true
                    Layout.fillHeight: true

                    TracePlot {
                        objectName: "indexHistoryPlot"
                        anchors.fill: parent
                        buffer: ui.indices.history
                        stacked: false
                        minimum: 0
                        maximum: 100
                        timeBase: ui.indices.historySeconds
                        autoScale: false
                        colors: [theme.meditation, theme.concentration]
                        lineColor: theme.meditation
                        gridColor: theme.grid
                        showGrid: true
                    }
                }
                Item { Layout.preferredWidth: percentAxis.implicitWidth }
                Axis {
                    objectName: "indexTimeAxis"
                    minimum: -ui.indices.historySeconds
                    maximum: 0
                    divisionStep: ui.indices.historySeconds <= 20 ? 1 : ui.indices.historySeconds / 10
                    suffix: qsTr(" s")
                    Layout.fillWidth: true
                }
            }
        }
    }
}
