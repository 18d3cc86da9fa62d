import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// The console as it runs: every item, filtered by type and text, copied to the clipboard;
// the running averages and the log file beside it.
Item {
    id: screen
    objectName: "consoleScreen"

    Theme { id: theme }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: theme.padding
        spacing: theme.spacing

        Flow {
            objectName: "consoleToolbar"
            spacing: theme.unit
            Layout.fillWidth: true

            ComboBox {
                id: typeBox
                objectName: "consoleTypeBox"
                model: ui.console.typeChoices
                currentIndex: ui.console.typeChoice
                onActivated: index => ui.console.typeChoice = index
                implicitWidth: theme.unit * 10
            }
            TextField {
                objectName: "consoleFilterField"
                placeholderText: qsTr("Filter by text")
                text: ui.console.filterText
                onTextEdited: ui.console.filterText = text
                implicitWidth: theme.unit * 16
            }
            Switch {
                id: follow
                objectName: "consoleFollowSwitch"
                text: qsTr("Follow newest")
                checked: true
            }
            Button {
                objectName: "consoleCopySelectedButton"
                text: qsTr("Copy selected")
                enabled: ui.console.selectedCount > 0
                onClicked: ui.console.copySelected()
            }
            Button {
                objectName: "consoleCopyAllButton"
                text: qsTr("Copy all shown")
                onClicked: ui.console.copyAll()
            }
            Button {
                objectName: "consoleClearButton"
                text: qsTr("Clear")
                onClicked: ui.console.clear()
            }
            Label {
                height: typeBox.height
                verticalAlignment: Text.AlignVCenter
                text: qsTr("%1 of %2 items").arg(ui.console.shownCount).arg(ui.console.keptCount)
                      + (ui.console.message ? "  ·  " + ui.console.message : "")
                color: theme.dimText
            }
        }

        RowLayout {
            spacing: theme.spacing
            Layout.fillWidth: true
            Layout.fillHeight: true

            Panel {
                title: qsTr("Items (newest at the bottom; click, Ctrl+click or Shift+click to select)")
                Layout.fillWidth: true
                Layout.fillHeight: true

                ListView {
                    id: list
                    objectName: "consoleList"
                    model: ui.console.items
                    clip: true
                    reuseItems: true
                    boundsBehavior: Flickable.StopAtBounds
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    ScrollBar.vertical: ScrollBar {}

                    onCountChanged: if (follow.checked) Qt.callLater(list.positionViewAtEnd)

                    delegate: Rectangle {
                        id: row
                        required property int index
                        required property string time
                        required property string type
                        required property string text
                        required property bool selected
                        width: ListView.view.width
                        height: line.implicitHeight + 4
                        color: selected ? Qt.darker(theme.accent, 2.2) : (index % 2 ? theme.surface : "transparent")

                        RowLayout {
                            id: line
                            anchors.fill: parent
                            anchors.leftMargin: 4
                            anchors.rightMargin: 4
                            spacing: theme.spacing
                            Label {
                                text: row.time
                                color: theme.dimText
                                font.family: "monospace"
                                Layout.alignment: Qt.AlignTop
                            }
                            Label {
                                text: row.type
                                visible: row.type !== ""
                                color: theme.accent
                                font.family: "monospace"
                                Layout.alignment: Qt.AlignTop
                            }
                            Label {
                                text: row.text
                                font.family: "monospace"
                                wrapMode: Text.WrapAnywhere
                                Layout.fillWidth: true
                            }
                        }
                        MouseArea {
                            anchors.fill: parent
                            onClicked: mouse => ui.console.select(row.index, mouse.modifiers)
                        }
                    }

                    Label {
                        anchors.centerIn: parent
                        visible: list.count === 0
                        text: ui.console.keptCount === 0 ? qsTr("No items yet") : qsTr("No item matches the filter")
                        color: theme.dimText
                    }
                }
            }

            ColumnLayout {
                spacing: theme.spacing
                Layout.fillHeight: true
                Layout.preferredWidth: theme.unit * 17
                Layout.maximumWidth: theme.unit * 17

                Panel {
                    title: qsTr("Running averages")
                    Layout.fillWidth: true
                    Layout.fillHeight: true

                    ListView {
                        id: averages
                        objectName: "consoleAverages"
                        model: ui.console.averages
                        clip: true
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                        ScrollBar.vertical: ScrollBar {}
                        delegate: RowLayout {
                            required property var modelData
                            width: ListView.view.width
                            spacing: theme.spacing
                            Label {
                                text: modelData.name
                                color: theme.dimText
                                elide: Text.ElideRight
                                Layout.fillWidth: true
                            }
                            Label {
                                text: Number(modelData.value).toLocaleString(Qt.locale(), "f", 2)
                                font.bold: true
                            }
                        }
                        Label {
                            anchors.centerIn: parent
                            width: parent.width
                            horizontalAlignment: Text.AlignHCenter
                            wrapMode: Text.WordWrap
                            visible: averages.count === 0
                            text: qsTr("No running averages")
                            color: theme.dimText
                        }
                    }
                }

                Panel {
                    title: qsTr("Log file")
                    Layout.fillWidth: true

                    Switch {
                        objectName: "consoleLoggingSwitch"
                        text: qsTr("Write a log file")
                        checked: ui.console.loggingEnabled
                        onToggled: ui.console.loggingEnabled = checked
                    }
                    TextEdit {
                        objectName: "consoleLogPath"
                        visible: ui.console.loggingEnabled
                        text: ui.console.logFilePath
                        readOnly: true
                        selectByMouse: true
                        wrapMode: TextEdit.WrapAnywhere
                        color: theme.text
                        selectionColor: theme.accent
                        font.family: "monospace"
                        Layout.fillWidth: true
                    }
                }
            }
        }
    }
}
