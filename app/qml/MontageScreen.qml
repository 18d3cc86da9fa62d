import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts

// The running device's montage as a table, one editor per cell; montage files; the file a
// device gets whenever it starts.
Item {
    id: screen
    objectName: "montageScreen"

    Theme { id: theme }

    // Relative column widths: #, name, type, input, reference, three filters, scale, offset, visual scale.
    readonly property var weights: [0.45, 1.5, 1.05, 1.25, 1.25, 1, 1, 1, 1, 1, 1]
    readonly property real weightSum: weights.reduce((a, b) => a + b, 0)
    function columnWidth(column) {
        return Math.floor((table.width - (weights.length - 1) * theme.spacing) * weights[column] / weightSum)
    }

    // A text cell. A refused text stays (framed in red) until the value itself changes.
    component TextCell: TextField {
        id: cell
        property int row
        property string field
        property string value
        property bool refused: false
        objectName: "montage_" + field + "_" + row
        text: value
        enabled: ui.montage.canEdit
        selectByMouse: true
        onEditingFinished: {
            if (text !== value)
                refused = !ui.montage.setField(row, field, text)
        }
        onValueChanged: { text = value; refused = false }
        background: Rectangle {
            color: cell.enabled ? theme.plotBackground : theme.surface
            border.color: cell.refused ? theme.bad : cell.activeFocus ? theme.accent : theme.border
            radius: theme.radius
        }
    }

    // A choice cell; `offset` shifts the choices against the stored value (the "none" reference).
    component ChoiceCell: ComboBox {
        property int row
        property string field
        property int value
        property int offset: 0
        objectName: "montage_" + field + "_" + row
        currentIndex: value + offset
        enabled: ui.montage.canEdit
        onActivated: index => {
            if (!ui.montage.setField(row, field, String(index - offset)))
                currentIndex = Qt.binding(() => value + offset)
        }
    }

    FileDialog {
        id: loadDialog
        objectName: "montageLoadDialog"
        title: qsTr("Load a montage")
        nameFilters: [qsTr("Montage files (*.xml *.json)"), qsTr("All files (*)")]
        onAccepted: ui.montage.loadFile(selectedFile.toString())
    }

    FileDialog {
        id: saveDialog
        objectName: "montageSaveDialog"
        title: qsTr("Save the montage")
        fileMode: FileDialog.SaveFile
        nameFilters: [qsTr("XML montage (*.xml)"), qsTr("JSON montage (*.json)")]
        onAccepted: ui.montage.saveFile(selectedFile.toString())
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: theme.padding
        spacing: theme.spacing

        Rectangle {
            visible: ui.montage.refusal !== ""
            color: theme.raised
            border.color: ui.montage.deviceName !== "" ? theme.warning : theme.border
            radius: theme.radius
            Layout.fillWidth: true
            implicitHeight: refusalLabel.implicitHeight + 2 * theme.spacing
            Label {
                id: refusalLabel
                objectName: "montageRefusal"
                anchors.fill: parent
                anchors.margins: theme.spacing
                text: ui.montage.refusal
                color: ui.montage.deviceName !== "" ? theme.warning : theme.dimText
                wrapMode: Text.WordWrap
            }
        }

        Panel {
            title: ui.montage.deviceName !== ""
                   ? qsTr("Channels of %1 (%2 Hz)").arg(ui.montage.deviceName).arg(ui.montage.samplingRate)
                   : qsTr("Channels")
            Layout.fillWidth: true
            Layout.fillHeight: true

            Item {
                id: table
                Layout.fillWidth: true
                Layout.fillHeight: true

                Row {
                    id: header
                    spacing: theme.spacing
                    Repeater {
                        model: [qsTr("#"), qsTr("Name"), qsTr("Type"), qsTr("Input"), qsTr("Reference"),
                            qsTr("High-pass, Hz"), qsTr("Low-pass, Hz"), qsTr("Notch, Hz"), qsTr("Scale"),
                            qsTr("Offset, µV"), qsTr("Visual scale")]
                        Label {
                            required property string modelData
                            required property int index
                            width: screen.columnWidth(index)
                            text: modelData
                            color: theme.dimText
                            elide: Text.ElideRight
                        }
                    }
                }

                ListView {
                    id: channelList
                    objectName: "montageChannelList"
                    anchors.top: header.bottom
                    anchors.topMargin: theme.spacing
                    anchors.left: parent.left
                    anchors.right: parent.right
                    anchors.bottom: parent.bottom
                    model: ui.montage.channels
                    clip: true
                    spacing: Math.round(theme.spacing / 2)
                    boundsBehavior: Flickable.StopAtBounds
                    ScrollBar.vertical: ScrollBar {}

                    delegate: Row {
                        id: channel
                        required property int index
                        required property string name
                        required property string type
                        required property int input
                        required property int reference
                        required property string highPass
                        required property string lowPass
                        required property string bandStop
                        required property string scale
                        required property string offset
                        required property string visualScale
                        spacing: theme.spacing

                        Label {
                            width: screen.columnWidth(0)
                            height: nameCell.height
                            verticalAlignment: Text.AlignVCenter
                            text: channel.index + 1
                            color: theme.channelColor(channel.index)
                            font.bold: true
                        }
                        TextCell { id: nameCell; width: screen.columnWidth(1); row: channel.index; field: "name"; value: channel.name }
                        ChoiceCell {
                            width: screen.columnWidth(2); row: channel.index; field: "type"
                            model: ui.montage.typeNames
                            value: ui.montage.typeNames.indexOf(channel.type)
                        }
                        ChoiceCell {
                            width: screen.columnWidth(3); row: channel.index; field: "input"
                            model: ui.montage.inputNames
                            value: channel.input
                        }
                        ChoiceCell {
                            width: screen.columnWidth(4); row: channel.index; field: "reference"
                            model: [qsTr("none")].concat(ui.montage.inputNames)
                            value: channel.reference
                            offset: 1
                        }
                        TextCell {
                            width: screen.columnWidth(5); row: channel.index; field: "highPass"; value: channel.highPass
                            placeholderText: qsTr("common")
                        }
                        TextCell {
                            width: screen.columnWidth(6); row: channel.index; field: "lowPass"; value: channel.lowPass
                            placeholderText: qsTr("common")
                        }
                        TextCell {
                            width: screen.columnWidth(7); row: channel.index; field: "bandStop"; value: channel.bandStop
                            placeholderText: qsTr("common")
                        }
                        TextCell { width: screen.columnWidth(8); row: channel.index; field: "scale"; value: channel.scale }
                        TextCell { width: screen.columnWidth(9); row: channel.index; field: "offset"; value: channel.offset }
                        TextCell {
                            width: screen.columnWidth(10); row: channel.index; field: "visualScale"; value: channel.visualScale
                        }
                    }
                }
            }

            Label {
                objectName: "montageError"
                visible: ui.montage.error !== ""
                text: ui.montage.error
                color: theme.bad
                wrapMode: Text.WordWrap
                Layout.fillWidth: true
            }
            Label {
                text: qsTr("An empty filter cell follows the common filter of the Signal screen.")
                color: theme.dimText
                wrapMode: Text.WordWrap
                Layout.fillWidth: true
            }
        }

        Panel {
            title: qsTr("Files")
            Layout.fillWidth: true

            RowLayout {
                spacing: theme.spacing
                Layout.fillWidth: true
                Button {
                    objectName: "montageLoadButton"
                    text: qsTr("Load…")
                    enabled: ui.montage.canEdit
                    onClicked: loadDialog.open()
                }
                Button {
                    objectName: "montageSaveButton"
                    text: qsTr("Save as…")
                    enabled: ui.montage.deviceName !== ""
                    onClicked: saveDialog.open()
                }
                Button {
                    objectName: "montageDefaultButton"
                    text: qsTr("Device default")
                    enabled: ui.montage.canEdit
                    onClicked: ui.montage.restoreDefault()
                }
                Label {
                    objectName: "montageMessage"
                    text: ui.montage.message !== "" ? ui.montage.message
                          : ui.montage.currentFile !== "" ? ui.montage.currentFile : qsTr("No file loaded or saved yet")
                    color: theme.dimText
                    elide: Text.ElideMiddle
                    Layout.fillWidth: true
                }
            }

            RowLayout {
                spacing: theme.spacing
                visible: ui.montage.deviceName !== ""
                Layout.fillWidth: true
                Label {
                    text: qsTr("When %1 starts:").arg(ui.montage.deviceName)
                    color: theme.dimText
                }
                Label {
                    objectName: "montageDeviceFile"
                    text: ui.montage.deviceMontage !== "" ? ui.montage.deviceMontage : qsTr("its default montage")
                    elide: Text.ElideMiddle
                    Layout.fillWidth: true
                }
                Button {
                    objectName: "montageUseForDeviceButton"
                    text: qsTr("Use the current file")
                    enabled: ui.montage.currentFile !== "" && ui.montage.currentFile !== ui.montage.deviceMontage
                    onClicked: ui.montage.useFileForDevice()
                }
                Button {
                    objectName: "montageForgetButton"
                    text: qsTr("Use its default")
                    enabled: ui.montage.deviceMontage !== ""
                    onClicked: ui.montage.forgetDeviceMontage()
                }
            }
        }
    }
}
