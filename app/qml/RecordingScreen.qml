import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// Recording to files: the controls and elapsed time, annotations, and where the files go.
Item {
    id: screen
    objectName: "recordingScreen"

    Theme { id: theme }

    // After a note is added the field lets go of the keyboard, so the keys 1-9 mark again.
    function addAnnotation() {
        if (ui.recording.annotate(annotationField.text)) {
            annotationField.clear()
            annotationField.focus = false
        }
    }

    GridLayout {
        id: content
        anchors.fill: parent
        anchors.margins: theme.padding
        columns: 2
        rowSpacing: theme.spacing
        columnSpacing: theme.spacing

        Panel {
            title: qsTr("Recording")
            Layout.row: 0
            Layout.column: 0
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.preferredWidth: (content.width - content.columnSpacing) * 0.6

            RowLayout {
                spacing: theme.unit
                Layout.fillWidth: true

                RecordButton {
                    objectName: "recordButton"
                    text: qsTr("Record")
                    symbol: "record"
                    symbolColor: theme.recording
                    enabled: ui.recording.canRecord && !ui.recording.recording
                    onClicked: ui.recording.start()
                }
                RecordButton {
                    objectName: "pauseButton"
                    text: ui.recording.paused ? qsTr("Continue") : qsTr("Pause")
                    symbol: ui.recording.paused ? "play" : "pause"
                    enabled: ui.recording.recording
                    onClicked: ui.recording.paused ? ui.recording.resume() : ui.recording.pause()
                }
                RecordButton {
                    objectName: "stopButton"
                    text: qsTr("Stop")
                    symbol: "stop"
                    enabled: ui.recording.recording
                    onClicked: ui.recording.stop()
                }
                Item { Layout.fillWidth: true }
            }

            RowLayout {
                spacing: theme.unit
                Layout.fillWidth: true
                Layout.topMargin: theme.spacing

                Label {
                    objectName: "durationLabel"
                    text: ui.recording.durationText
                    font.pointSize: theme.basePointSize * 3.2
                    font.family: "monospace"
                    color: ui.recording.recording ? theme.text : theme.dimText
                }
                ColumnLayout {
                    spacing: Math.round(theme.unit * 0.2)
                    Layout.fillWidth: true
                    RowLayout {
                        spacing: Math.round(theme.unit * 0.4)
                        Rectangle {
                            implicitWidth: Math.round(theme.unit * 0.7)
                            implicitHeight: implicitWidth
                            radius: width / 2
                            color: !ui.recording.recording ? theme.unknown
                                   : ui.recording.paused ? theme.warning : theme.recording
                        }
                        Label {
                            objectName: "recordingStateLabel"
                            text: !ui.recording.recording ? qsTr("Not recording")
                                  : ui.recording.paused ? qsTr("Paused") : qsTr("Recording")
                            font.pointSize: theme.basePointSize * 1.3
                        }
                    }
                    Label {
                        visible: !ui.recording.recording && !ui.recording.canRecord
                        text: qsTr("Start a device to record.")
                        color: theme.dimText
                    }
                }
            }

            Label {
                objectName: "recordingError"
                visible: ui.recording.lastError !== ""
                text: ui.recording.lastError
                color: theme.bad
                wrapMode: Text.WordWrap
                Layout.fillWidth: true
            }

            Label {
                text: qsTr("Annotation")
                Layout.topMargin: theme.spacing
                color: theme.dimText
            }
            RowLayout {
                spacing: theme.spacing
                Layout.fillWidth: true
                TextField {
                    id: annotationField
                    objectName: "annotationField"
                    placeholderText: ui.recording.recording ? qsTr("Type a note and press Enter")
                                                            : qsTr("Notes can be added while recording")
                    enabled: ui.recording.recording
                    Layout.fillWidth: true
                    onAccepted: screen.addAnnotation()
                }
                Button {
                    objectName: "addAnnotationButton"
                    text: qsTr("Add")
                    enabled: ui.recording.recording && annotationField.text.trim() !== ""
                    onClicked: screen.addAnnotation()
                }
            }

            Label {
                text: qsTr("Keys while recording")
                color: theme.dimText
                Layout.topMargin: theme.spacing
            }
            GridLayout {
                id: keyLegend
                objectName: "keyLegend"
                columns: Math.max(1, Math.min(5, Math.floor(width / (theme.unit * 10))))
                columnSpacing: theme.unit
                rowSpacing: Math.round(theme.unit * 0.2)
                Layout.fillWidth: true
                Repeater {
                    model: ui.recording.keyAnnotations
                    delegate: RowLayout {
                        required property string modelData
                        required property int index
                        spacing: Math.round(theme.unit * 0.5)
                        Layout.fillWidth: true
                        Layout.preferredWidth: (keyLegend.width - (keyLegend.columns - 1) * keyLegend.columnSpacing) / keyLegend.columns
                        Rectangle {
                            implicitWidth: keyText.implicitWidth + Math.round(theme.unit * 0.8)
                            implicitHeight: keyText.implicitHeight + Math.round(theme.unit * 0.2)
                            radius: Math.round(theme.unit * 0.2)
                            color: theme.raised
                            border.color: theme.border
                            Text {
                                id: keyText
                                anchors.centerIn: parent
                                text: index + 1
                                color: theme.text
                                font.bold: true
                            }
                        }
                        Label {
                            text: modelData
                            elide: Text.ElideRight
                            Layout.fillWidth: true
                        }
                    }
                }
            }

            Item { Layout.fillHeight: true }
        }

        Panel {
            title: qsTr("Annotations")
            Layout.row: 0
            Layout.column: 1
            Layout.rowSpan: 2
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.preferredWidth: (content.width - content.columnSpacing) * 0.4
            Layout.minimumWidth: theme.unit * 14

            ListView {
                id: annotations
                objectName: "annotationList"
                model: ui.recording.annotations
                clip: true
                spacing: Math.round(theme.unit * 0.25)
                boundsBehavior: Flickable.StopAtBounds
                Layout.fillWidth: true
                Layout.fillHeight: true
                ScrollBar.vertical: ScrollBar {}
                // The newest note stays in view.
                onCountChanged: positionViewAtEnd()

                delegate: RowLayout {
                    id: annotation
                    required property string onsetText
                    required property string text
                    width: ListView.view.width
                    spacing: theme.unit
                    Label {
                        text: annotation.onsetText
                        color: theme.dimText
                        font.family: "monospace"
                    }
                    Label {
                        text: annotation.text
                        wrapMode: Text.WordWrap
                        Layout.fillWidth: true
                    }
                }

                Label {
                    anchors.centerIn: parent
                    width: parent.width
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.WordWrap
                    visible: annotations.count === 0
                    text: qsTr("No annotations yet")
                    color: theme.dimText
                }
            }
        }

        Panel {
            title: qsTr("Patient")
            objectName: "patientPanel"
            Layout.row: 1
            Layout.column: 0
            Layout.fillWidth: true
            Layout.preferredWidth: (content.width - content.columnSpacing) * 0.6

            // Written into the header of the next recording's files.
            GridLayout {
                columns: 4
                columnSpacing: theme.spacing
                rowSpacing: Math.round(theme.unit * 0.3)
                enabled: !ui.recording.recording
                Layout.fillWidth: true

                Label { text: qsTr("Name"); color: theme.dimText }
                TextField {
                    objectName: "patientName"
                    text: ui.recording.patientName
                    Layout.fillWidth: true
                    onEditingFinished: ui.recording.patientName = text
                }
                Label { text: qsTr("Code"); color: theme.dimText }
                TextField {
                    objectName: "patientCode"
                    text: ui.recording.patientCode
                    Layout.fillWidth: true
                    onEditingFinished: ui.recording.patientCode = text
                }
                Label { text: qsTr("Gender"); color: theme.dimText }
                ComboBox {
                    objectName: "patientGender"
                    model: [qsTr("Unknown"), qsTr("Male"), qsTr("Female")]
                    currentIndex: ui.recording.patientGender
                    Layout.fillWidth: true
                    onActivated: index => ui.recording.patientGender = index
                }
                Label { text: qsTr("Birth date"); color: theme.dimText }
                TextField {
                    objectName: "patientBirthDate"
                    text: ui.recording.birthDate
                    placeholderText: qsTr("YYYY-MM-DD")
                    Layout.fillWidth: true
                    onEditingFinished: ui.recording.setBirthDate(text)
                }
                Label { text: qsTr("Equipment"); color: theme.dimText }
                TextField {
                    objectName: "patientEquipment"
                    text: ui.recording.equipment
                    Layout.fillWidth: true
                    onEditingFinished: ui.recording.equipment = text
                }
                Label { text: qsTr("Additional"); color: theme.dimText }
                TextField {
                    objectName: "patientAdditional"
                    text: ui.recording.patientAdditional
                    Layout.fillWidth: true
                    onEditingFinished: ui.recording.patientAdditional = text
                }
            }
            Label {
                objectName: "patientError"
                visible: ui.recording.patientError !== ""
                text: ui.recording.patientError
                color: theme.bad
                wrapMode: Text.WordWrap
                Layout.fillWidth: true
            }
        }

        Panel {
            title: qsTr("Files")
            Layout.row: 2
            Layout.column: 0
            Layout.columnSpan: 2
            Layout.fillWidth: true

            RowLayout {
                spacing: theme.spacing
                Layout.fillWidth: true
                Label { text: qsTr("Folder"); color: theme.dimText; Layout.preferredWidth: filesColumn.labelWidth }
                Label {
                    objectName: "recordingFolder"
                    text: ui.recording.folder
                    elide: Text.ElideMiddle
                    Layout.fillWidth: true
                }
                Button {
                    objectName: "openFolderButton"
                    text: qsTr("Open folder")
                    onClicked: ui.recording.openFolder()
                }
            }
            RowLayout {
                id: filesColumn
                readonly property real labelWidth: Math.max(currentMetrics.advanceWidth, folderMetrics.advanceWidth)
                visible: ui.recording.currentFile !== ""
                spacing: theme.spacing
                Layout.fillWidth: true
                TextMetrics { id: currentMetrics; text: qsTr("Writing") }
                TextMetrics { id: folderMetrics; text: qsTr("Folder") }
                Label { text: qsTr("Writing"); color: theme.dimText; Layout.preferredWidth: filesColumn.labelWidth }
                Label {
                    objectName: "currentFileLabel"
                    text: ui.recording.currentFile
                    elide: Text.ElideMiddle
                    Layout.fillWidth: true
                }
            }
            RowLayout {
                visible: !ui.recording.recording && ui.recording.lastFiles.length > 0
                spacing: theme.spacing
                Layout.fillWidth: true
                Label {
                    text: qsTr("Saved")
                    color: theme.dimText
                    Layout.alignment: Qt.AlignTop
                    Layout.preferredWidth: filesColumn.labelWidth
                }
                Label {
                    objectName: "lastFilesLabel"
                    text: ui.recording.lastFiles.join("\n")
                    elide: Text.ElideMiddle
                    Layout.fillWidth: true
                }
            }
        }
    }
}
