import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// The records folder: each record with its facts and files, played or reviewed from here.
Item {
    id: screen
    objectName: "recordingsScreen"

    Theme { id: theme }

    readonly property var records: ui.records.records

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: theme.padding
        spacing: theme.spacing
        visible: !ui.records.review.open

        RowLayout {
            spacing: theme.spacing
            Layout.fillWidth: true
            Label { text: qsTr("Folder"); color: theme.dimText }
            Label {
                objectName: "recordsFolder"
                text: ui.records.folder
                elide: Text.ElideMiddle
                Layout.fillWidth: true
            }
            Button {
                objectName: "refreshRecordsButton"
                text: qsTr("Refresh")
                onClicked: ui.records.refresh()
            }
            Button {
                objectName: "openRecordsFolderButton"
                text: qsTr("Open folder")
                onClicked: ui.records.openFolder()
            }
        }

        Label {
            objectName: "recordsMessage"
            visible: text !== ""
            text: ui.records.message !== "" ? ui.records.message : ui.records.player.message
            color: theme.warning
            wrapMode: Text.WordWrap
            Layout.fillWidth: true
        }

        Panel {
            title: qsTr("Records (%1)").arg(records.count)
            Layout.fillWidth: true
            Layout.fillHeight: true

            RecordRow {
                header: true
                Layout.fillWidth: true
            }

            ListView {
                id: list
                objectName: "recordList"
                model: records
                clip: true
                spacing: Math.round(theme.unit * 0.2)
                boundsBehavior: Flickable.StopAtBounds
                Layout.fillWidth: true
                Layout.fillHeight: true
                ScrollBar.vertical: ScrollBar {}

                delegate: RecordRow {
                    required property var model
                    required property int index
                    record: model
                    recordIndex: index
                    width: ListView.view.width
                    onPlayRequested: ui.records.play(index)
                    onReviewRequested: ui.records.openReview(index)
                    onDeleteRequested: {
                        deleteDialog.row = index
                        deleteDialog.recordName = model.name
                        deleteDialog.open()
                    }
                }

                Label {
                    anchors.centerIn: parent
                    visible: list.count === 0
                    text: qsTr("No records in this folder yet")
                    color: theme.dimText
                }
            }
        }

        RecordPlayerBar {
            visible: ui.records.player.active
            Layout.fillWidth: true
        }
    }

    ReviewView {
        anchors.fill: parent
        anchors.margins: theme.padding
        visible: ui.records.review.open
    }

    Dialog {
        id: deleteDialog
        objectName: "deleteRecordDialog"
        property int row: -1
        property string recordName
        title: qsTr("Delete record")
        modal: true
        anchors.centerIn: Overlay.overlay
        width: Math.min(screen.width - 2 * theme.unit, theme.unit * 24)

        Label {
            width: parent.width
            text: qsTr("Delete %1 and all its files? This cannot be undone.").arg(deleteDialog.recordName)
            wrapMode: Text.WordWrap
        }

        footer: DialogButtonBox {
            Button {
                objectName: "confirmDeleteButton"
                text: qsTr("Delete")
                DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole
            }
            Button {
                objectName: "cancelDeleteButton"
                text: qsTr("Cancel")
                DialogButtonBox.buttonRole: DialogButtonBox.RejectRole
            }
        }

        onAccepted: ui.records.removeRecord(row)
    }
}
