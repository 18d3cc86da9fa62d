import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import OrvexPro.Plots 1.0

// A whole record at rest: a window over every channel, moved and zoomed by the person, with
// the record's annotations beside it and as markers on the traces.
Item {
    id: view
    objectName: "reviewView"

    Theme { id: theme }

    readonly property var review: ui.records.review

    ColumnLayout {
        anchors.fill: parent
        spacing: theme.spacing

        RowLayout {
            spacing: theme.spacing
            Layout.fillWidth: true

            Button {
                objectName: "closeReviewButton"
                text: qsTr("Back to records")
                onClicked: view.review.close()
            }
            Label {
                objectName: "reviewFileName"
                text: view.review.fileName
                font.bold: true
                elide: Text.ElideMiddle
                Layout.fillWidth: true
                Layout.minimumWidth: theme.unit * 6
            }
            Label {
                objectName: "reviewWindowText"
                text: view.review.windowText
                font.family: "monospace"
            }
            Label { text: qsTr("Window"); color: theme.dimText }
            ValueComboBox {
                objectName: "reviewWindowLength"
                values: view.review.windowLengths
                value: view.review.windowLength
                format: v => v < 60 ? v + " s" : (v / 60) + " min"
                onChosen: v => view.review.windowLength = v
            }
            Button {
                objectName: "reviewZoomOutTime"
                implicitWidth: theme.unit * 2.2
                text: "−"
                ToolTip.visible: hovered
                ToolTip.text: qsTr("Longer window")
                onClicked: view.review.zoomTime(-1)
            }
            Button {
                objectName: "reviewZoomInTime"
                implicitWidth: theme.unit * 2.2
                text: "+"
                ToolTip.visible: hovered
                ToolTip.text: qsTr("Shorter window")
                onClicked: view.review.zoomTime(1)
            }
            Label { text: qsTr("Scale"); color: theme.dimText }
            ValueComboBox {
                objectName: "reviewScale"
                values: view.review.scales
                value: view.review.microvoltsPerDivision
                format: v => v >= 1000 ? (v / 1000) + " mV" : v + " µV"
                onChosen: v => view.review.microvoltsPerDivision = v
            }
            Button {
                objectName: "reviewAmplitudeDown"
                implicitWidth: theme.unit * 2.2
                text: "−"
                ToolTip.visible: hovered
                ToolTip.text: qsTr("Smaller traces")
                onClicked: view.review.zoomAmplitude(-1)
            }
            Button {
                objectName: "reviewAmplitudeUp"
                implicitWidth: theme.unit * 2.2
                text: "+"
                ToolTip.visible: hovered
                ToolTip.text: qsTr("Larger traces")
                onClicked: view.review.zoomAmplitude(1)
            }
        }

        RowLayout {
            spacing: theme.spacing
            Layout.fillWidth: true
            Layout.fillHeight: true

            Rectangle {
                color: theme.plotBackground
                border.color: theme.border
                radius: theme.radius
                Layout.fillWidth: true
                Layout.fillHeight: true

                RowLayout {
                    anchors.fill: parent
                    anchors.margins: 1
                    spacing: 0

                    // Channel names beside their lanes.
                    Column {
                        Layout.fillHeight: true
                        Layout.preferredWidth: theme.unit * 3.5
                        Repeater {
                            model: view.review.channelNames
                            delegate: Label {
                                required property string modelData
                                required property int index
                                width: parent.width
                                height: plot.height / Math.max(1, view.review.channelNames.length)
                                text: modelData
                                color: theme.channelColor(index)
                                verticalAlignment: Text.AlignVCenter
                                horizontalAlignment: Text.AlignRight
                                rightPadding: Math.round(theme.unit * 0.3)
                                elide: Text.ElideRight
                                fontSizeMode: Text.VerticalFit
                                minimumPointSize: 6
                            }
                        }
                    }

                    ReviewPlot {
                        id: plot
                        objectName: "reviewPlot"
                        buffer: view.review.traces
                        microvoltsPerDivision: view.review.microvoltsPerDivision
                        timeDivisions: 10
                        colors: theme.channelColors
                        gridColor: theme.grid
                        showGrid: true
                        clip: true
                        Layout.fillWidth: true
                        Layout.fillHeight: true

                        WheelHandler {
                            // The wheel moves through the file; with Ctrl it zooms in time.
                            acceptedModifiers: Qt.NoModifier
                            onWheel: event => view.review.scroll(event.angleDelta.y > 0 ? -0.1 : 0.1)
                        }
                        WheelHandler {
                            acceptedModifiers: Qt.ControlModifier
                            onWheel: event => view.review.zoomTime(event.angleDelta.y > 0 ? 1 : -1)
                        }

                        Repeater {
                            model: view.review.markers
                            delegate: Item {
                                required property var modelData
                                objectName: "reviewMarker_" + modelData.row
                                x: Math.round(modelData.position * plot.width)
                                width: 1
                                height: plot.height
                                readonly property bool current: modelData.row === view.review.currentAnnotation
                                Rectangle {
                                    width: 2
                                    height: parent.height
                                    color: parent.current ? theme.accent : theme.warning
                                }
                                Label {
                                    x: 4
                                    y: 2
                                    text: modelData.text
                                    width: Math.min(implicitWidth, theme.unit * 10)
                                    elide: Text.ElideRight
                                    color: theme.accentText
                                    leftPadding: 3
                                    rightPadding: 3
                                    background: Rectangle {
                                        color: parent.parent.current ? theme.accent : theme.warning
                                        radius: 2
                                    }
                                }
                            }
                        }
                    }
                }
            }

            Panel {
                title: qsTr("Annotations (%1)").arg(annotationList.count)
                Layout.fillHeight: true
                Layout.preferredWidth: theme.unit * 15

                ListView {
                    id: annotationList
                    objectName: "reviewAnnotationList"
                    model: view.review.annotations
                    clip: true
                    boundsBehavior: Flickable.StopAtBounds
                    currentIndex: view.review.currentAnnotation
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    ScrollBar.vertical: ScrollBar {}

                    delegate: ItemDelegate {
                        id: entry
                        required property var model
                        required property int index
                        objectName: "reviewAnnotation_" + index
                        width: ListView.view.width
                        highlighted: ListView.isCurrentItem
                        onClicked: view.review.jumpTo(index)
                        contentItem: RowLayout {
                            spacing: theme.spacing
                            Label {
                                text: entry.model.onsetText
                                color: entry.highlighted ? theme.accentText : theme.dimText
                                font.family: "monospace"
                            }
                            Label {
                                text: entry.model.text
                                color: entry.highlighted ? theme.accentText : theme.text
                                elide: Text.ElideRight
                                Layout.fillWidth: true
                            }
                        }
                    }

                    Label {
                        anchors.centerIn: parent
                        visible: annotationList.count === 0
                        text: qsTr("No annotations")
                        color: theme.dimText
                    }
                }
            }
        }

        RowLayout {
            spacing: theme.spacing
            Layout.fillWidth: true

            Button {
                objectName: "reviewBackButton"
                text: "◀"
                ToolTip.visible: hovered
                ToolTip.text: qsTr("Half a window back")
                onClicked: view.review.scroll(-0.5)
            }
            Slider {
                id: position
                objectName: "reviewPosition"
                from: 0
                to: Math.max(0.001, view.review.maximumStart)
                value: view.review.windowStart
                enabled: view.review.maximumStart > 0
                Layout.fillWidth: true
                onMoved: view.review.windowStart = value
            }
            Button {
                objectName: "reviewForwardButton"
                text: "▶"
                ToolTip.visible: hovered
                ToolTip.text: qsTr("Half a window on")
                onClicked: view.review.scroll(0.5)
            }
        }
    }
}
