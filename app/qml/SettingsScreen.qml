import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts

// Every setting, generated from the settings' own descriptions: grouped by category, one
// editor per type, the reason beside a refused value, and the way back to the default.
Item {
    id: screen
    objectName: "settingsScreen"

    Theme { id: theme }

    FileDialog {
        id: fileDialog
        property int row: -1
        objectName: "settingsFileDialog"
        onAccepted: ui.settings.setValue(row, decodeURIComponent(selectedFile.toString().replace(/^file:\/\//, "")))
    }

    FolderDialog {
        id: folderDialog
        property int row: -1
        objectName: "settingsFolderDialog"
        onAccepted: ui.settings.setValue(row, decodeURIComponent(selectedFolder.toString().replace(/^file:\/\//, "")))
    }

    ColorDialog {
        id: colorDialog
        property int row: -1
        objectName: "settingsColorDialog"
        onAccepted: ui.settings.setValue(row, selectedColor.toString())
    }

    ListView {
        id: list
        objectName: "settingsList"
        anchors.fill: parent
        anchors.margins: theme.padding
        clip: true
        spacing: Math.round(theme.spacing / 2)
        model: ui.settings
        ScrollBar.vertical: ScrollBar {}

        section.property: "section"
        section.delegate: Label {
            required property string section
            width: list.width
            topPadding: theme.unit
            bottomPadding: theme.spacing
            text: section
            font.bold: true
            font.pointSize: theme.basePointSize * 1.2
            color: theme.accent
        }

        delegate: Rectangle {
            id: row
            required property int index
            required property string name
            required property string displayName
            required property string description
            required property string editor
            required property string value
            required property string minimum
            required property string maximum
            required property string prefix
            required property string suffix
            required property var choices
            required property var choiceValues
            required property string placeholder
            required property string fileFilter
            required property var suggestions
            required property bool shown
            required property bool canRestore
            required property string defaultValue
            required property string error

            objectName: "setting_" + name
            width: list.width
            visible: shown
            height: shown ? layout.implicitHeight + 2 * theme.spacing : 0
            radius: theme.radius
            color: theme.surface

            RowLayout {
                id: layout
                anchors.fill: parent
                anchors.margins: theme.spacing
                spacing: theme.unit

                ColumnLayout {
                    Layout.fillWidth: true
                    Layout.preferredWidth: 3
                    spacing: 2
                    Label { text: row.displayName; font.bold: true; color: theme.text }
                    Label {
                        text: row.description
                        color: theme.dimText
                        wrapMode: Text.WordWrap
                        Layout.fillWidth: true
                    }
                }

                RowLayout {
                    Layout.fillWidth: true
                    Layout.preferredWidth: 2
                    spacing: theme.spacing

                    Label { visible: row.prefix !== ""; text: row.prefix; color: theme.dimText }
                    TextField {
                        id: editor
                        objectName: "editor"
                        visible: row.editor === "number" || row.editor === "text" || row.editor === "color"
                                 || row.editor === "file" || row.editor === "folder"
                        text: row.value
                        placeholderText: row.editor === "number" && row.minimum !== ""
                                         ? row.minimum + " … " + row.maximum : row.placeholder
                        Layout.fillWidth: true
                        onEditingFinished: if (text !== row.value) ui.settings.setValue(row.index, text)
                        // Arrow keys step a number; a refused step shows its reason like typing does.
                        Keys.onUpPressed: if (row.editor === "number") ui.settings.stepValue(row.index, 1)
                        Keys.onDownPressed: if (row.editor === "number") ui.settings.stepValue(row.index, -1)
                        // A refused text stays in the field until the value itself changes.
                        Connections {
                            target: row
                            function onValueChanged() { editor.text = row.value }
                        }
                    }
                    ToolButton {
                        objectName: "suggestionsButton"
                        visible: row.editor === "text" && row.suggestions.length > 0
                        text: "▾"
                        onClicked: suggestionsMenu.popup()
                        Menu {
                            id: suggestionsMenu
                            Repeater {
                                model: row.suggestions
                                MenuItem {
                                    required property string modelData
                                    text: modelData
                                    onTriggered: ui.settings.setValue(row.index, modelData)
                                }
                            }
                        }
                    }
                    Rectangle {
                        visible: row.editor === "color"
                        implicitWidth: theme.unit * 1.5
                        implicitHeight: theme.unit * 1.5
                        radius: theme.radius
                        color: row.editor === "color" ? row.value : "transparent"
                        border.color: theme.border
                        TapHandler {
                            onTapped: {
                                colorDialog.row = row.index
                                colorDialog.selectedColor = row.value
                                colorDialog.open()
                            }
                        }
                    }
                    Button {
                        visible: row.editor === "file" || row.editor === "folder"
                        text: qsTr("Choose…")
                        onClicked: {
                            if (row.editor === "folder") {
                                folderDialog.row = row.index
                                folderDialog.open()
                                return
                            }
                            fileDialog.row = row.index
                            fileDialog.nameFilters = [row.fileFilter !== "" ? qsTr("Files (%1)").arg(row.fileFilter)
                                                                             : qsTr("All files (*)")]
                            fileDialog.open()
                        }
                    }
                    Switch {
                        objectName: "editorSwitch"
                        visible: row.editor === "bool"
                        checked: row.value === "true"
                        onToggled: ui.settings.setValue(row.index, checked ? "true" : "false")
                    }
                    ComboBox {
                        objectName: "editorChoice"
                        visible: row.editor === "enum"
                        model: row.choices
                        currentIndex: row.choiceValues.indexOf(row.value)
                        Layout.fillWidth: true
                        onActivated: index => ui.settings.setValue(row.index, row.choiceValues[index])
                    }
                    Label {
                        visible: row.editor === "readonly"
                        text: row.value
                        color: theme.text
                        Layout.fillWidth: true
                    }
                    Label { visible: row.suffix !== ""; text: row.suffix; color: theme.dimText }
                    Button {
                        objectName: "restoreDefault"
                        visible: row.canRestore
                        enabled: row.value !== row.defaultValue
                        text: qsTr("Default")
                        ToolTip.visible: hovered
                        ToolTip.text: qsTr("Back to %1").arg(row.defaultValue === "" ? qsTr("empty") : row.defaultValue)
                        onClicked: ui.settings.restoreDefault(row.index)
                    }
                }

                Label {
                    objectName: "settingError"
                    visible: row.error !== ""
                    text: row.error
                    color: theme.bad
                    wrapMode: Text.WordWrap
                    Layout.preferredWidth: theme.unit * 12
                }
            }
        }
    }
}
