import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import OrvexPro.Plots 1.0

// The live amplitude spectra of the channels chosen on the spectrum screen, large, with the
// peak frequency and both indices.
Rectangle {
    id: view
    color: theme.window

    Theme { id: theme }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: theme.unit
        spacing: theme.spacing

        RowLayout {
            spacing: theme.unit * 2
            Layout.fillWidth: true
            Repeater {
                model: [
                    { label: qsTr("Peak"), value: ui.spectrum.peakFrequencyText, color: theme.text },
                    { label: qsTr("Meditation"), value: ui.feedback.meditation >= 0 ? Math.round(ui.feedback.meditation) : "–", color: theme.meditation },
                    { label: qsTr("Concentration"), value: ui.feedback.concentration >= 0 ? Math.round(ui.feedback.concentration) : "–", color: theme.concentration }
                ]
                RowLayout {
                    required property var modelData
                    spacing: theme.spacing
                    Label { text: modelData.label; color: theme.dimText }
                    Label {
                        text: modelData.value
                        color: modelData.color
                        font.bold: true
                        font.pointSize: theme.basePointSize * 1.6
                    }
                }
            }
            Item { Layout.fillWidth: true }
        }

        GridLayout {
            columns: 2
            rowSpacing: Math.round(theme.spacing / 2)
            columnSpacing: Math.round(theme.spacing / 2)
            Layout.fillWidth: true
            Layout.fillHeight: true

            Axis {
                orientation: Qt.Vertical
                logarithmic: plot.logScale
                minimum: plot.shownMinimum
                maximum: plot.shownMaximum
                divisionStep: plot.shownMaximum / 5
                visible: ui.spectrum.hasSpectrum
                Layout.fillHeight: true
                Layout.preferredWidth: Math.max(implicitWidth, theme.unit * 2)
            }
            Rectangle {
                color: theme.plotBackground
                Layout.fillWidth: true
                Layout.fillHeight: true

                SpectrumPlot {
                    id: plot
                    objectName: "feedbackSpectrumPlot"
                    anchors.fill: parent
                    buffer: ui.spectrum.spectra
                    channels: ui.channels.spectrumChannels.length > 0 ? ui.channels.spectrumChannels : [-1]
                    logScale: ui.spectrum.logScale
                    maxFrequency: ui.spectrum.maxFrequency
                    lineColor: theme.trace
                    colors: [...Array(ui.channels.count).keys()].map(c => theme.channelColor(c))
                    gridColor: theme.grid
                }
                Label {
                    anchors.centerIn: parent
                    width: parent.width - 2 * theme.unit
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.WordWrap
                    visible: !ui.spectrum.hasSpectrum || ui.channels.spectrumChannels.length === 0
                    text: ui.channels.spectrumChannels.length === 0 ? qsTr("Choose channels on the Spectrum screen to see their spectra here.")
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
                minimum: 0
                maximum: ui.spectrum.maxFrequency
                suffix: qsTr(" Hz")
                Layout.fillWidth: true
            }
        }
    }
}
