import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// The line under every screen: the device, its channels' contact quality, the recording and
// where the API listens.
Rectangle {
    id: bar
    objectName: "statusBar"

    Theme { id: theme }

    color: theme.surface
    implicitHeight: row.implicitHeight + 2 * Math.round(theme.unit * 0.3)

    Rectangle {
        anchors { left: parent.left; right: parent.right; top: parent.top }
        height: 1
        color: theme.border
    }

    RowLayout {
        id: row
        anchors.fill: parent
        anchors.leftMargin: theme.padding
        anchors.rightMargin: theme.padding
        spacing: theme.unit

        Label {
            objectName: "statusDevice"
            text: ui.status.deviceName !== "" ? ui.status.deviceName : qsTr("No device")
            color: ui.status.deviceName !== "" ? theme.text : theme.dimText
            font.bold: ui.status.deviceName !== ""
            elide: Text.ElideRight
            Layout.maximumWidth: theme.unit * 12
        }
        Label {
            objectName: "statusBattery"
            visible: ui.status.battery >= 0
            text: qsTr("Battery %1 %").arg(ui.status.battery)
            color: ui.status.battery >= 0 && ui.status.battery < 15 ? theme.warning : theme.dimText
        }
        Label {
            objectName: "statusRate"
            visible: ui.status.samplingRate > 0
            text: ui.signal.frequencyText(ui.status.samplingRate)
            color: theme.dimText
        }

        // Contact quality per channel; scrolls sideways when the montage is wider than the bar.
        ListView {
            id: chips
            objectName: "qualityChips"
            orientation: ListView.Horizontal
            spacing: Math.round(theme.unit * 0.25)
            clip: true
            interactive: contentWidth > width
            boundsBehavior: Flickable.StopAtBounds
            model: ui.channels
            Layout.fillWidth: true
            Layout.preferredWidth: contentWidth
            Layout.minimumWidth: Math.min(contentWidth, theme.unit * 6)
            implicitHeight: theme.unit * 1.2
            Layout.preferredHeight: implicitHeight

            delegate: Rectangle {
                id: chip
                required property string name
                required property int quality
                required property string qualityLevel

                height: ListView.view.height
                width: chipText.implicitWidth + Math.round(theme.unit * 0.7)
                radius: Math.round(theme.unit * 0.25)
                color: Qt.rgba(chipColor.r, chipColor.g, chipColor.b, 0.22)
                border.color: chipColor
                border.width: 1
                readonly property color chipColor: theme.qualityColor(qualityLevel)

                Text {
                    id: chipText
                    anchors.centerIn: parent
                    text: chip.name
                    color: theme.text
                    font.pointSize: theme.basePointSize * 0.85
                }
                HoverHandler { id: chipHover }
                ToolTip.visible: chipHover.hovered
                ToolTip.text: chip.quality >= 0 ? qsTr("%1: signal quality %2 %").arg(chip.name).arg(chip.quality)
                                                : qsTr("%1: no quality reading yet").arg(chip.name)
            }
        }

        Label {
            id: message
            objectName: "statusMessage"
            visible: ui.status.message !== ""
            text: ui.status.message
            color: theme.warning
            elide: Text.ElideRight
            Layout.fillWidth: true
            Layout.preferredWidth: implicitWidth
            Layout.minimumWidth: theme.unit * 4
            HoverHandler { id: messageHover }
            ToolTip.visible: messageHover.hovered && message.truncated
            ToolTip.text: message.text
        }
        Item {
            // Keeps the right-hand items at the right edge when the middle is short.
            visible: !message.visible
            Layout.fillWidth: true
        }

        RowLayout {
            objectName: "statusRecording"
            spacing: Math.round(theme.unit * 0.35)
            Rectangle {
                visible: ui.recording.recording
                implicitWidth: Math.round(theme.unit * 0.6)
                implicitHeight: implicitWidth
                radius: width / 2
                color: ui.recording.paused ? theme.dimText : theme.recording
            }
            Label {
                text: !ui.recording.recording ? qsTr("Not recording")
                      : ui.recording.paused ? qsTr("Paused %1").arg(ui.recording.durationText)
                      : qsTr("Recording %1").arg(ui.recording.durationText)
                color: ui.recording.recording ? theme.text : theme.dimText
            }
        }

        Label {
            objectName: "statusApi"
            visible: ui.status.apiAddress !== ""
            text: ui.status.apiAddress
            color: theme.dimText
            elide: Text.ElideRight
            Layout.maximumWidth: theme.unit * 22
        }
    }
}
