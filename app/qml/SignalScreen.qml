import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import OrvexPro.Plots 1.0

// The live, filtered signal of every shown channel, one lane per channel.
Item {
    id: screen
    objectName: "signalScreen"

    Theme { id: theme }

    // The channels in lane order, top to bottom.
    readonly property var laneChannels: ui.channels.visibleChannels
    // The plot reads an empty list as "all channels"; a channel that does not exist shows none.
    readonly property var plotChannels: laneChannels.length > 0 ? laneChannels : [-1]

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: theme.padding
        spacing: theme.spacing

        Flow {
            objectName: "signalToolbar"
            spacing: theme.unit
            Layout.fillWidth: true

            RowLayout {
                spacing: theme.spacing
                Label { text: qsTr("Time base") }
                ValueComboBox {
                    objectName: "timeBaseBox"
                    values: ui.signal.timeBases
                    value: ui.signal.timeBase
                    format: v => qsTr("%1 s").arg(v)
                    onChosen: v => ui.signal.timeBase = v
                }
            }

            RowLayout {
                spacing: theme.spacing
                Label { text: qsTr("Scale") }
                ValueComboBox {
                    objectName: "scaleBox"
                    enabled: !ui.signal.autoScale
                    values: ui.signal.scales
                    value: ui.signal.microvoltsPerDivision
                    format: v => qsTr("%1 / div").arg(ui.signal.scaleText(v))
                    onChosen: v => ui.signal.microvoltsPerDivision = v
                }
                CheckBox {
                    objectName: "autoScaleBox"
                    text: qsTr("Auto")
                    checked: ui.signal.autoScale
                    onToggled: ui.signal.autoScale = checked
                }
            }

            Button {
                objectName: "freezeButton"
                text: ui.signal.frozen ? qsTr("Resume") : qsTr("Freeze")
                checkable: true
                checked: ui.signal.frozen
                onToggled: ui.signal.frozen = checked
            }

            ToolSeparator {}

            RowLayout {
                spacing: theme.spacing
                Label { text: qsTr("High-pass") }
                ValueComboBox {
                    objectName: "hpfBox"
                    values: ui.signal.hpfChoices
                    value: ui.signal.hpf
                    format: v => ui.signal.frequencyText(v)
                    onChosen: v => ui.signal.hpf = v
                }
            }
            RowLayout {
                spacing: theme.spacing
                Label { text: qsTr("Low-pass") }
                ValueComboBox {
                    objectName: "lpfBox"
                    values: ui.signal.lpfChoices
                    value: ui.signal.lpf
                    format: v => ui.signal.frequencyText(v)
                    onChosen: v => ui.signal.lpf = v
                }
            }
            RowLayout {
                spacing: theme.spacing
                Label { text: qsTr("Notch") }
                ValueComboBox {
                    objectName: "notchBox"
                    values: ui.signal.notchChoices
                    value: ui.signal.notch
                    format: v => ui.signal.frequencyText(v)
                    onChosen: v => ui.signal.notch = v
                }
            }
        }

        RowLayout {
            spacing: theme.spacing
            Layout.fillWidth: true

            Label {
                text: qsTr("Channels")
                color: theme.dimText
                Layout.alignment: Qt.AlignTop
                Layout.topMargin: Math.round(theme.unit * 0.2)
            }
            ChannelToggles {
                objectName: "channelVisibility"
                model: ui.channels
                role: "visible"
                Layout.fillWidth: true
                onToggled: (channel, on) => ui.channels.setVisible(channel, on)
            }
            Button {
                objectName: "showAllChannels"
                text: qsTr("All")
                flat: true
                Layout.alignment: Qt.AlignTop
                onClicked: ui.channels.setAllVisible(true)
            }
            Button {
                objectName: "hideAllChannels"
                text: qsTr("None")
                flat: true
                Layout.alignment: Qt.AlignTop
                onClicked: ui.channels.setAllVisible(false)
            }
        }

        Rectangle {
            color: theme.plotBackground
            border.color: theme.border
            radius: theme.radius
            Layout.fillWidth: true
            Layout.fillHeight: true

            GridLayout {
                anchors.fill: parent
                anchors.margins: theme.spacing
                columns: 2
                rowSpacing: Math.round(theme.spacing / 2)
                columnSpacing: theme.spacing

                // Channel names, each centred on its lane.
                Item {
                    id: names
                    Layout.fillHeight: true
                    Layout.preferredWidth: nameMetrics.advanceWidth + theme.spacing
                    readonly property real laneHeight: screen.laneChannels.length > 0 ? height / screen.laneChannels.length : height

                    TextMetrics {
                        id: nameMetrics
                        font.pointSize: theme.basePointSize
                        font.bold: true
                        text: ui.channels.names.reduce((a, b) => b.length > a.length ? b : a, "Ch00")
                    }

                    Repeater {
                        model: screen.laneChannels
                        delegate: Label {
                            required property var modelData
                            required property int index
                            y: index * names.laneHeight
                            width: names.width
                            height: names.laneHeight
                            verticalAlignment: Text.AlignVCenter
                            horizontalAlignment: Text.AlignRight
                            text: ui.channels.names[modelData] ?? ""
                            color: theme.text
                            font.bold: true
                            // Dense montages get smaller names rather than overlapping ones.
                            font.pointSize: Math.max(theme.basePointSize * 0.6,
                                                     Math.min(theme.basePointSize, theme.basePointSize * names.laneHeight / (theme.unit * 1.1)))
                            elide: Text.ElideRight
                        }
                    }
                }

                TracePlot {
                    id: tracePlot
                    objectName: "tracePlot"
                    buffer: ui.signal.traces
                    visibleChannels: screen.plotChannels
                    timeBase: ui.signal.timeBase
                    microvoltsPerDivision: ui.signal.microvoltsPerDivision
                    autoScale: ui.signal.autoScale
                    frozen: ui.signal.frozen
                    stacked: true
                    lineColor: theme.trace
                    gridColor: theme.grid
                    showGrid: true
                    Layout.fillWidth: true
                    Layout.fillHeight: true

                    Rectangle {
                        objectName: "frozenBadge"
                        visible: ui.signal.frozen
                        anchors { top: parent.top; right: parent.right; margins: theme.spacing }
                        width: frozenText.implicitWidth + theme.unit
                        height: frozenText.implicitHeight + Math.round(theme.unit * 0.3)
                        radius: height / 2
                        color: Qt.rgba(theme.accent.r, theme.accent.g, theme.accent.b, 0.25)
                        border.color: theme.accent
                        Label {
                            id: frozenText
                            anchors.centerIn: parent
                            text: qsTr("Frozen")
                        }
                    }

                    Label {
                        anchors.centerIn: parent
                        visible: ui.channels.count === 0 || screen.laneChannels.length === 0
                        text: ui.channels.count === 0 ? qsTr("No signal: start a device on the Devices screen.")
                                                      : qsTr("All channels are hidden.")
                        color: theme.dimText
                    }
                }

                Label {
                    objectName: "scaleLabel"
                    text: ui.signal.autoScale ? qsTr("Auto") : qsTr("%1 / div").arg(ui.signal.scaleText(ui.signal.microvoltsPerDivision))
                    color: theme.dimText
                    font.pointSize: theme.basePointSize * 0.9
                    horizontalAlignment: Text.AlignRight
                    Layout.alignment: Qt.AlignRight
                }
                Axis {
                    objectName: "timeAxis"
                    minimum: -ui.signal.timeBase
                    maximum: 0
                    // The plot draws a line per second up to 20 s, ten divisions beyond.
                    divisionStep: ui.signal.timeBase <= 20 ? 1 : ui.signal.timeBase / 10
                    suffix: qsTr(" s")
                    Layout.fillWidth: true
                }
            }
        }
    }
}
