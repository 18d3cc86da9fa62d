import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// One record of the records list (or, with `header`, the column titles above them).
Rectangle {
    id: row

    property bool header: false
    // The list model's roles of this record, and its row; a header row has none.
    property var record: ({})
    property int recordIndex: -1
    readonly property bool readable: header || record.readable === true

    signal playRequested()
    signal reviewRequested()
    signal deleteRequested()

    Theme { id: theme }

    readonly property real dateWidth: theme.unit * 10.5
    readonly property real numberWidth: theme.unit * 4.2

    objectName: header ? "recordHeader" : "record_" + recordIndex
    implicitHeight: layout.implicitHeight + 2 * Math.round(theme.unit * 0.3)
    color: header ? "transparent" : theme.raised
    radius: theme.radius

    RowLayout {
        id: layout
        anchors.fill: parent
        anchors.leftMargin: theme.spacing
        anchors.rightMargin: theme.spacing
        spacing: theme.spacing

        ColumnLayout {
            spacing: 0
            Layout.preferredWidth: row.dateWidth
            Label {
                text: row.header ? qsTr("Date") : row.record.dateText
                color: row.header ? theme.dimText : theme.text
                font.family: row.header ? Qt.application.font.family : "monospace"
            }
            Label {
                visible: !row.header
                text: row.record.name
                color: theme.dimText
                elide: Text.ElideMiddle
                Layout.fillWidth: true
            }
        }
        Label {
            objectName: "recordDuration"
            text: row.header ? qsTr("Duration") : row.record.durationText
            color: row.header ? theme.dimText : theme.text
            Layout.preferredWidth: row.numberWidth * 1.3
        }
        Label {
            objectName: "recordChannels"
            text: row.header ? qsTr("Channels") : row.readable ? row.record.channels : "-"
            color: row.header ? theme.dimText : theme.text
            Layout.preferredWidth: row.numberWidth
        }
        Label {
            objectName: "recordRate"
            text: row.header ? qsTr("Rate") : row.readable ? qsTr("%1 Hz").arg(row.record.rate) : "-"
            color: row.header ? theme.dimText : theme.text
            Layout.preferredWidth: row.numberWidth
        }
        Label {
            text: row.header ? qsTr("Size") : row.record.sizeText
            color: row.header ? theme.dimText : theme.text
            Layout.preferredWidth: row.numberWidth
        }
        Label {
            objectName: "recordAnnotations"
            text: row.header ? qsTr("Notes") : row.record.annotations
            color: row.header ? theme.dimText : theme.text
            Layout.preferredWidth: row.numberWidth * 0.8
        }
        Label {
            text: row.header ? qsTr("Files") : (row.record.files || []).join("  ")
            color: theme.dimText
            elide: Text.ElideRight
            Layout.fillWidth: true
        }
        Button {
            objectName: "playRecordButton"
            visible: !row.header
            enabled: row.readable
            text: qsTr("Play")
            onClicked: row.playRequested()
        }
        Button {
            objectName: "reviewRecordButton"
            visible: !row.header
            enabled: row.readable
            text: qsTr("Review")
            onClicked: row.reviewRequested()
        }
        Button {
            objectName: "deleteRecordButton"
            visible: !row.header
            text: qsTr("Delete")
            onClicked: row.deleteRequested()
        }
    }
}
