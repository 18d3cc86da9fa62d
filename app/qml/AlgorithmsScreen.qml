import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// The user's own algorithms: the list with live values and the control mark, and the form
// that adds or edits one.
Item {
    id: screen
    objectName: "algorithmsScreen"

    Theme { id: theme }

    // The row being edited, -1 while adding.
    property int editingRow: -1
    readonly property var kinds: ["share", "ratio", "formula"]
    readonly property var modes: ["mean", "max", "min"]
    readonly property string kind: kinds[kindBox.currentIndex]
    readonly property var errors: ui.algorithms.errors

    function load(fields) {
        kindBox.currentIndex = kinds.indexOf(fields.kind)
        nameField.text = fields.name
        channelsField.text = fields.channels
        fromField.text = fields.from
        toField.text = fields.to
        otherFromField.text = fields.otherFrom
        otherToField.text = fields.otherTo
        modeBox.currentIndex = modes.indexOf(fields.mode)
        formulaField.text = fields.formula
        visibleBox.checked = fields.visibleToControl
    }

    function startNew(kind) {
        editingRow = -1
        ui.algorithms.clearErrors()
        load(ui.algorithms.fields(-1, kind))
    }

    function edit(row) {
        editingRow = row
        ui.algorithms.clearErrors()
        load(ui.algorithms.fields(row, ""))
    }

    function submit() {
        const saved = ui.algorithms.save(editingRow, {
            kind: kind, name: nameField.text, channels: channelsField.text,
            from: fromField.text, to: toField.text, otherFrom: otherFromField.text, otherTo: otherToField.text,
            mode: modes[modeBox.currentIndex], formula: formulaField.text, visibleToControl: visibleBox.checked
        })
        if (saved)
            startNew(kind)
    }

    // Removing destroys the row's delegate, so the form is reset from here.
    function remove(row) {
        if (ui.algorithms.remove(row) && editingRow >= 0)
            startNew(kind)
    }

    Component.onCompleted: startNew("share")

    // A field's reason for refusal, right under it.
    component FieldError: Label {
        property string field
        objectName: "algorithmError_" + field
        visible: text !== ""
        text: screen.errors[field] !== undefined ? screen.errors[field] : ""
        color: theme.bad
        wrapMode: Text.WordWrap
        Layout.fillWidth: true
    }

    component FieldLabel: Label {
        color: theme.dimText
        Layout.topMargin: Math.round(theme.spacing / 2)
    }

    RowLayout {
        id: content
        anchors.fill: parent
        anchors.margins: theme.padding
        spacing: theme.spacing

        Panel {
            title: qsTr("Algorithms")
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.preferredWidth: (content.width - content.spacing) * 0.58

            ListView {
                id: list
                objectName: "algorithmDefinitionList"
                model: ui.algorithms.list
                clip: true
                spacing: Math.round(theme.spacing / 2)
                boundsBehavior: Flickable.StopAtBounds
                Layout.fillWidth: true
                Layout.fillHeight: true
                ScrollBar.vertical: ScrollBar {}

                delegate: Rectangle {
                    id: algorithm
                    required property int index
                    required property string name
                    required property string summary
                    required property bool visibleToControl
                    required property real value
                    required property bool hasValue
                    objectName: "algorithm_" + name
                    width: ListView.view.width
                    height: row.implicitHeight + 2 * theme.spacing
                    radius: theme.radius
                    color: screen.editingRow === index ? theme.raised : theme.plotBackground
                    border.color: theme.border

                    RowLayout {
                        id: row
                        anchors.fill: parent
                        anchors.margins: theme.spacing
                        spacing: theme.unit
                        ColumnLayout {
                            spacing: 2
                            Layout.fillWidth: true
                            Label { text: algorithm.name; font.bold: true; elide: Text.ElideRight; Layout.fillWidth: true }
                            Label {
                                text: algorithm.summary
                                color: theme.dimText
                                elide: Text.ElideRight
                                Layout.fillWidth: true
                            }
                        }
                        Label {
                            objectName: "algorithmValue_" + algorithm.name
                            text: algorithm.hasValue ? algorithm.value.toFixed(2) : "–"
                            font.pointSize: theme.basePointSize * 1.6
                            font.family: "monospace"
                            horizontalAlignment: Text.AlignRight
                            Layout.preferredWidth: theme.unit * 6
                        }
                        CheckBox {
                            objectName: "algorithmControl_" + algorithm.name
                            text: qsTr("Control")
                            checked: algorithm.visibleToControl
                            onToggled: ui.algorithms.setVisibleToControl(algorithm.index, checked)
                            ToolTip.visible: hovered
                            ToolTip.text: qsTr("Offer the value to other programs as a control")
                        }
                        Button {
                            objectName: "algorithmEdit_" + algorithm.name
                            text: qsTr("Edit")
                            onClicked: screen.edit(algorithm.index)
                        }
                        Button {
                            objectName: "algorithmRemove_" + algorithm.name
                            text: qsTr("Remove")
                            onClicked: screen.remove(algorithm.index)
                        }
                    }
                }

                Label {
                    anchors.centerIn: parent
                    width: parent.width
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.WordWrap
                    visible: list.count === 0
                    text: qsTr("No algorithms yet: define one on the right")
                    color: theme.dimText
                }
            }

            Label {
                objectName: "algorithmsError"
                visible: ui.algorithms.error !== ""
                text: ui.algorithms.error
                color: theme.bad
                wrapMode: Text.WordWrap
                Layout.fillWidth: true
            }
        }

        Panel {
            title: screen.editingRow >= 0 ? qsTr("Edit %1").arg(ui.algorithms.fields(screen.editingRow, "").name)
                                          : qsTr("New algorithm")
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.preferredWidth: (content.width - content.spacing) * 0.42
            Layout.minimumWidth: theme.unit * 18

            Flickable {
                id: form
                clip: true
                contentHeight: fields.implicitHeight
                boundsBehavior: Flickable.StopAtBounds
                Layout.fillWidth: true
                Layout.fillHeight: true
                ScrollBar.vertical: ScrollBar {}

                ColumnLayout {
                    id: fields
                    width: form.width
                    spacing: Math.round(theme.spacing / 2)

                    FieldLabel { text: qsTr("Kind") }
                    ComboBox {
                        id: kindBox
                        objectName: "algorithmKind"
                        model: [qsTr("Share of a band"), qsTr("Ratio of two bands"), qsTr("Formula")]
                        Layout.fillWidth: true
                        onActivated: if (screen.editingRow < 0) screen.startNew(screen.kinds[currentIndex])
                    }

                    FieldLabel { text: qsTr("Name (used in formulas)") }
                    TextField {
                        id: nameField
                        objectName: "algorithmName"
                        placeholderText: qsTr("e.g. alpha_o1")
                        Layout.fillWidth: true
                    }
                    FieldError { field: "name" }

                    FieldLabel { visible: screen.kind !== "formula"; text: qsTr("Channels") }
                    TextField {
                        id: channelsField
                        objectName: "algorithmChannels"
                        visible: screen.kind !== "formula"
                        placeholderText: qsTr("all channels")
                        Layout.fillWidth: true
                    }
                    Label {
                        visible: screen.kind !== "formula" && ui.algorithms.channelNames.length > 0
                        text: qsTr("Names or numbers from 0, comma-separated: %1").arg(ui.algorithms.channelNames.join(", "))
                        color: theme.dimText
                        wrapMode: Text.WordWrap
                        Layout.fillWidth: true
                    }
                    FieldError { field: "channels" }

                    FieldLabel {
                        visible: screen.kind !== "formula"
                        text: screen.kind === "ratio" ? qsTr("Band, Hz (numerator)") : qsTr("Band, Hz")
                    }
                    RowLayout {
                        visible: screen.kind !== "formula"
                        spacing: theme.spacing
                        Layout.fillWidth: true
                        TextField { id: fromField; objectName: "algorithmFrom"; Layout.fillWidth: true }
                        Label { text: "–" }
                        TextField { id: toField; objectName: "algorithmTo"; Layout.fillWidth: true }
                    }
                    FieldError { field: "from" }
                    FieldError { field: "to" }

                    FieldLabel { visible: screen.kind === "ratio"; text: qsTr("Over the band, Hz (denominator)") }
                    RowLayout {
                        visible: screen.kind === "ratio"
                        spacing: theme.spacing
                        Layout.fillWidth: true
                        TextField { id: otherFromField; objectName: "algorithmOtherFrom"; Layout.fillWidth: true }
                        Label { text: "–" }
                        TextField { id: otherToField; objectName: "algorithmOtherTo"; Layout.fillWidth: true }
                    }
                    FieldError { field: "otherFrom" }
                    FieldError { field: "otherTo" }

                    FieldLabel { visible: screen.kind === "share"; text: qsTr("Over the channels take the") }
                    ComboBox {
                        id: modeBox
                        objectName: "algorithmMode"
                        visible: screen.kind === "share"
                        model: [qsTr("mean"), qsTr("maximum"), qsTr("minimum")]
                        Layout.fillWidth: true
                    }

                    FieldLabel { visible: screen.kind === "formula"; text: qsTr("Formula") }
                    TextField {
                        id: formulaField
                        objectName: "algorithmFormula"
                        visible: screen.kind === "formula"
                        placeholderText: qsTr("e.g. (alpha_o1 + alpha_o2) / 2 - concentration")
                        Layout.fillWidth: true
                        onAccepted: screen.submit()
                    }
                    FieldError { field: "formula" }
                    Label {
                        visible: screen.kind === "formula"
                        text: qsTr("Other algorithms by name, meditation, concentration, numbers, + - * / ( ), min, max, abs")
                        color: theme.dimText
                        wrapMode: Text.WordWrap
                        Layout.fillWidth: true
                    }

                    CheckBox {
                        id: visibleBox
                        objectName: "algorithmVisible"
                        text: qsTr("Visible to control (offered to other programs)")
                        Layout.topMargin: theme.spacing
                    }

                    RowLayout {
                        spacing: theme.spacing
                        Layout.topMargin: theme.spacing
                        Button {
                            objectName: "algorithmSaveButton"
                            text: screen.editingRow >= 0 ? qsTr("Save") : qsTr("Add")
                            highlighted: true
                            onClicked: screen.submit()
                        }
                        Button {
                            objectName: "algorithmCancelButton"
                            text: screen.editingRow >= 0 ? qsTr("Cancel") : qsTr("Clear")
                            onClicked: screen.startNew(screen.kind)
                        }
                    }
                }
            }
        }
    }
}
