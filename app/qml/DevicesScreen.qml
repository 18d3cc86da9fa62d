import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts

// Finding devices and choosing the one that streams.
Item {
    id: screen
    objectName: "devicesScreen"

    Theme { id: theme }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: theme.padding
        spacing: theme.spacing

        RowLayout {
            spacing: theme.spacing
            Layout.fillWidth: true

            Button {
                objectName: "searchButton"
                text: ui.devices.searching ? qsTr("Stop search") : qsTr("Search for devices")
                highlighted: !ui.devices.searching
                onClicked: ui.devices.searching ? ui.devices.stopSearch() : ui.devices.startSearch()
            }
            BusyIndicator {
                objectName: "searchBusy"
                running: ui.devices.searching
                visible: running
                Layout.preferredHeight: theme.unit * 1.8
                Layout.preferredWidth: theme.unit * 1.8
            }
            Label {
                visible: ui.devices.searching
                text: qsTr("Searching…")
                color: theme.dimText
            }
            Item { Layout.fillWidth: true }
            Switch {
                objectName: "startFavouriteSwitch"
                text: qsTr("Start the favourite when found")
                checked: ui.devices.startFavourite
                onToggled: ui.devices.startFavourite = checked
            }
        }

        Rectangle {
            objectName: "devicesMessage"
            visible: ui.devices.message !== ""
            Layout.fillWidth: true
            implicitHeight: messageLabel.implicitHeight + 2 * theme.spacing
            radius: theme.radius
            color: Qt.rgba(theme.warning.r, theme.warning.g, theme.warning.b, 0.14)
            border.color: theme.warning

            Label {
                id: messageLabel
                anchors.fill: parent
                anchors.margins: theme.spacing
                anchors.leftMargin: theme.padding
                verticalAlignment: Text.AlignVCenter
                text: ui.devices.message
                color: theme.text
                font.pointSize: theme.basePointSize * 1.1
                wrapMode: Text.WordWrap
            }
        }

        Panel {
            title: qsTr("Devices")
            Layout.fillWidth: true
            Layout.fillHeight: true

            ListView {
                id: deviceList
                objectName: "deviceList"
                model: ui.devices.devices
                clip: true
                spacing: theme.spacing
                boundsBehavior: Flickable.StopAtBounds
                Layout.fillWidth: true
                Layout.fillHeight: true
                ScrollBar.vertical: ScrollBar {}

                delegate: Rectangle {
                    id: row
                    width: deviceList.width - (deviceList.ScrollBar.vertical.visible ? deviceList.ScrollBar.vertical.width : 0)

                    required property int index
                    required property string name
                    required property string serialNumber
                    required property string modelName
                    required property int battery
                    required property var channelModes
                    required property int preferredMode
                    required property bool favourite
                    required property string kind
                    required property bool current

                    implicitHeight: rowLayout.implicitHeight + 2 * theme.spacing
                    radius: theme.radius
                    color: current ? Qt.rgba(theme.accent.r, theme.accent.g, theme.accent.b, 0.14) : theme.raised
                    border.color: current ? theme.accent : theme.border
                    border.width: current ? 2 : 1

                    RowLayout {
                        id: rowLayout
                        anchors.fill: parent
                        anchors.margins: theme.spacing
                        anchors.leftMargin: Math.round(theme.spacing / 2)
                        spacing: theme.spacing

                        ToolButton {
                            objectName: "favouriteButton"
                            text: row.favourite ? "★" : "☆"
                            font.pointSize: theme.basePointSize * 1.5
                            palette.buttonText: row.favourite ? theme.warning : theme.dimText
                            onClicked: ui.devices.setFavourite(row.index, !row.favourite)
                            ToolTip.visible: hovered
                            ToolTip.text: row.favourite ? qsTr("Favourite: started by itself when found")
                                                        : qsTr("Make this the favourite device")
                        }

                        ColumnLayout {
                            spacing: Math.round(theme.unit * 0.15)
                            Layout.fillWidth: true

                            RowLayout {
                                spacing: theme.spacing
                                Layout.fillWidth: true
                                Label {
                                    text: row.name
                                    font.bold: true
                                    font.pointSize: theme.basePointSize * 1.15
                                    elide: Text.ElideRight
                                    Layout.minimumWidth: theme.unit * 3
                                }
                                KindTag { text: row.kind }
                                KindTag {
                                    visible: row.current
                                    text: qsTr("streaming")
                                    border.color: theme.accent
                                }
                                Item { Layout.fillWidth: true }
                            }
                            Label {
                                text: [row.modelName !== "" ? qsTr("Model %1").arg(row.modelName) : "",
                                       row.serialNumber !== "" ? qsTr("Serial %1").arg(row.serialNumber) : "",
                                       row.battery >= 0 ? qsTr("Battery %1 %").arg(row.battery) : ""]
                                      .filter(part => part !== "").join("   ·   ")
                                color: theme.dimText
                                elide: Text.ElideRight
                                Layout.fillWidth: true
                            }
                        }

                        ComboBox {
                            id: modeBox
                            objectName: "channelModeBox"
                            visible: row.channelModes.length > 0
                            enabled: !row.current
                            model: row.channelModes
                            textRole: "text"
                            implicitContentWidthPolicy: ComboBox.WidestText
                            // Starts on the device's preferred mode.
                            Component.onCompleted: currentIndex = row.preferredMode
                        }
                        Button {
                            objectName: row.current ? "stopDeviceButton" : "startDeviceButton"
                            text: row.current ? qsTr("Stop") : qsTr("Start")
                            highlighted: !row.current
                            Layout.minimumWidth: theme.unit * 5
                            onClicked: {
                                if (row.current)
                                    ui.devices.stopDevice()
                                else
                                    ui.devices.startDevice(row.index, modeBox.visible && modeBox.currentIndex >= 0
                                                           ? row.channelModes[modeBox.currentIndex].channels : -1)
                            }
                        }
                    }
                }

                Label {
                    anchors.centerIn: parent
                    width: parent.width - 2 * theme.unit
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.WordWrap
                    visible: deviceList.count === 0
                    text: ui.devices.searching ? qsTr("Looking for devices…")
                                               : qsTr("No devices found yet. Start a search.")
                    color: theme.dimText
                }
            }
        }

        Panel {
            title: qsTr("File player")
            Layout.fillWidth: true

            RowLayout {
                spacing: theme.spacing
                Layout.fillWidth: true

                Label {
                    objectName: "filePlayerPath"
                    text: ui.devices.filePlayerPath !== "" ? ui.devices.filePlayerPath
                                                           : qsTr("No file chosen: the player plays an EDF or BDF recording as if it were a device.")
                    color: ui.devices.filePlayerPath !== "" ? theme.text : theme.dimText
                    elide: Text.ElideMiddle
                    Layout.fillWidth: true
                }
                Button {
                    objectName: "chooseFileButton"
                    text: qsTr("Choose file…")
                    onClicked: fileDialog.open()
                }
            }
        }
    }

    FileDialog {
        id: fileDialog
        objectName: "filePlayerDialog"
        title: qsTr("Choose a recording to play")
        nameFilters: [qsTr("EDF and BDF recordings (*.edf *.bdf *.EDF *.BDF)"), qsTr("All files (*)")]
        onAccepted: ui.devices.filePlayerPath = selectedFile
    }

    component KindTag: Rectangle {
        property alias text: tagText.text
        Theme { id: theme }
        implicitWidth: tagText.implicitWidth + Math.round(theme.unit * 0.7)
        implicitHeight: tagText.implicitHeight + Math.round(theme.unit * 0.15)
        radius: Math.round(theme.unit * 0.25)
        color: "transparent"
        border.color: theme.border
        Text {
            id: tagText
            anchors.centerIn: parent
            color: theme.dimText
            font.pointSize: theme.basePointSize * 0.85
        }
    }
}
