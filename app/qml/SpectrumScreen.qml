import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import OrvexPro.Plots 1.0

// The amplitude spectra of the chosen channels, the rhythms of all channels and the
// spectrogram of one channel.
Item {
    id: screen
    objectName: "spectrumScreen"

    Theme { id: theme }

    // One colour per channel, indexed by channel, shared by the plot, its legend and the chips.
    readonly property var channelColors: [...Array(ui.channels.count).keys()].map(c => theme.channelColor(c))

    // The plot's frequency grid: the round 1, 2, 5 x 10^n step that gives about eight divisions.
    readonly property real frequencyDivision: {
        const raw = ui.spectrum.maxFrequency / 8
        const power = Math.pow(10, Math.floor(Math.log(raw) / Math.LN10))
        const mantissa = raw / power
        return (mantissa <= 1 + 1e-9 ? 1 : mantissa <= 2 + 1e-9 ? 2 : mantissa <= 5 + 1e-9 ? 5 : 10) * power
    }

    // Both plots' left axes as wide as the wider one, so the plots line up.
    readonly property real valueAxisWidth: Math.max(amplitudeAxis.implicitWidth, spectrogramAxis.implicitWidth, theme.unit * 2)

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: theme.padding
        spacing: theme.spacing

        Flow {
            objectName: "spectrumToolbar"
            spacing: theme.unit
            Layout.fillWidth: true

            Switch {
                objectName: "logScaleSwitch"
                text: qsTr("Logarithmic amplitude")
                checked: ui.spectrum.logScale
                onToggled: ui.spectrum.logScale = checked
            }
            RowLayout {
                spacing: theme.spacing
                Label { text: qsTr("Up to") }
                ValueComboBox {
                    objectName: "maxFrequencyBox"
                    values: ui.spectrum.maxFrequencies
                    value: ui.spectrum.maxFrequency
                    format: v => ui.signal.frequencyText(v)
                    onChosen: v => ui.spectrum.maxFrequency = v
                }
            }
            RowLayout {
                spacing: theme.spacing
                Label { text: qsTr("Peak"); color: theme.dimText }
                Label {
                    objectName: "peakFrequencyLabel"
                    text: ui.spectrum.peakFrequencyText
                    font.bold: true
                    font.pointSize: theme.basePointSize * 1.2
                }
            }
        }

        RowLayout {
            spacing: theme.spacing
            Layout.fillWidth: true
            Label {
                text: qsTr("Spectra of")
                color: theme.dimText
                Layout.alignment: Qt.AlignTop
                Layout.topMargin: Math.round(theme.unit * 0.2)
            }
            ChannelToggles {
                objectName: "spectrumChannels"
                model: ui.channels
                role: "inSpectrum"
                coloured: true
                Layout.fillWidth: true
                onToggled: (channel, on) => ui.channels.setInSpectrum(channel, on)
            }
        }

        GridLayout {
            id: content
            columns: 2
            rowSpacing: theme.spacing
            columnSpacing: theme.spacing
            Layout.fillWidth: true
            Layout.fillHeight: true

            Panel {
                title: qsTr("Amplitude spectrum")
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: (content.width - content.columnSpacing) * 0.6
                Layout.preferredHeight: (content.height - content.rowSpacing) * 0.55

                // The legend stays off the plot, whose every coloured pixel is a spectrum.
                Flow {
                    objectName: "spectrumLegend"
                    spacing: theme.unit
                    Layout.fillWidth: true
                    Layout.leftMargin: screen.valueAxisWidth + Math.round(theme.spacing / 2)
                    Repeater {
                        model: ui.channels.spectrumChannels
                        delegate: LegendItem {
                            required property int modelData
                            text: ui.channels.names[modelData] ?? ""
                            color: theme.channelColor(modelData)
                        }
                    }
                }

                GridLayout {
                    columns: 2
                    rowSpacing: Math.round(theme.spacing / 2)
                    columnSpacing: Math.round(theme.spacing / 2)
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.minimumHeight: theme.unit * 6

                    Axis {
                        id: amplitudeAxis
                        objectName: "amplitudeAxis"
                        orientation: Qt.Vertical
                        logarithmic: spectrumPlot.logScale
                        minimum: spectrumPlot.shownMinimum
                        maximum: spectrumPlot.shownMaximum
                        // Five divisions on the linear scale, as the plot's grid.
                        divisionStep: spectrumPlot.shownMaximum / 5
                        visible: ui.spectrum.hasSpectrum
                        Layout.fillHeight: true
                        Layout.preferredWidth: screen.valueAxisWidth
                    }
                    Rectangle {
                        color: theme.plotBackground
                        Layout.fillWidth: true
                        Layout.fillHeight: true

                        SpectrumPlot {
                            id: spectrumPlot
                            objectName: "spectrumPlot"
                            anchors.fill: parent
                            buffer: ui.spectrum.spectra
                            // The plot reads an empty list as "all channels"; -1 draws none.
                            channels: ui.channels.spectrumChannels.length > 0 ? ui.channels.spectrumChannels : [-1]
                            logScale: ui.spectrum.logScale
                            maxFrequency: ui.spectrum.maxFrequency
                            lineColor: theme.trace
                            colors: screen.channelColors
                            gridColor: theme.grid
                        }

                        Label {
                            anchors.centerIn: parent
                            width: parent.width - 2 * theme.unit
                            horizontalAlignment: Text.AlignHCenter
                            wrapMode: Text.WordWrap
                            visible: !ui.spectrum.hasSpectrum || ui.channels.spectrumChannels.length === 0
                            text: ui.channels.spectrumChannels.length === 0 ? qsTr("Choose channels above to see their spectra.")
                                                                            : qsTr("Waiting for the first spectrum…")
                            color: theme.dimText
                        }
                    }

                    Label {
                        text: qsTr("µV")
                        color: theme.dimText
                        font.pointSize: theme.basePointSize * 0.9
                        Layout.alignment: Qt.AlignRight | Qt.AlignTop
                    }
                    Axis {
                        id: frequencyAxis
                        objectName: "frequencyAxis"
                        minimum: 0
                        maximum: ui.spectrum.maxFrequency
                        divisionStep: screen.frequencyDivision
                        suffix: qsTr(" Hz")
                        Layout.fillWidth: true
                    }
                }
            }

            Panel {
                title: qsTr("Rhythms")
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: (content.width - content.columnSpacing) * 0.4
                Layout.preferredHeight: content.height
                Layout.rowSpan: 2
                Layout.minimumWidth: theme.unit * 20

                RhythmBars {
                    model: ui.spectrum.rhythms
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                }
            }

            Panel {
                title: qsTr("Spectrogram")
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: (content.width - content.columnSpacing) * 0.6
                Layout.preferredHeight: (content.height - content.rowSpacing) * 0.45

                RowLayout {
                    spacing: theme.spacing
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.minimumHeight: theme.unit * 5

                    Axis {
                        id: spectrogramAxis
                        objectName: "spectrogramAxis"
                        orientation: Qt.Vertical
                        minimum: 0
                        maximum: ui.spectrum.maxFrequency
                        suffix: qsTr(" Hz")
                        Layout.fillHeight: true
                        Layout.preferredWidth: screen.valueAxisWidth
                    }
                    SpectrogramPlot {
                        objectName: "spectrogramPlot"
                        buffer: ui.spectrum.spectra
                        logScale: ui.spectrum.logScale
                        maxFrequency: ui.spectrum.maxFrequency
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                    }
                }
                RowLayout {
                    spacing: theme.spacing
                    Layout.fillWidth: true
                    Label { text: qsTr("Channel"); color: theme.dimText }
                    ComboBox {
                        objectName: "spectrogramChannelBox"
                        model: ui.channels.names
                        currentIndex: ui.spectrum.spectrogramChannel
                        onActivated: index => ui.spectrum.spectrogramChannel = index
                    }
                    Item { Layout.fillWidth: true }
                    Label {
                        text: qsTr("Newest at the right")
                        color: theme.dimText
                        font.pointSize: theme.basePointSize * 0.85
                    }
                }
            }
        }
    }
}
