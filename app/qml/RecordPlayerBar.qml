import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// The player of a record: where it is, pause and continue, how fast it plays.
Panel {
    id: bar
    objectName: "playerBar"
    title: qsTr("Playing %1").arg(player.file.split("/").pop())

    readonly property var player: ui.records.player

    RowLayout {
        spacing: theme.spacing
        Layout.fillWidth: true

        Theme { id: theme }

        Button {
            objectName: "playerPauseButton"
            text: bar.player.paused ? qsTr("Continue") : qsTr("Pause")
            onClicked: bar.player.setPaused(!bar.player.paused)
        }
        Label {
            objectName: "playerPosition"
            text: ui.recording.formatDuration(bar.player.positionSeconds)
            font.family: "monospace"
        }
        Slider {
            id: slider
            objectName: "playerSlider"
            from: 0
            to: Math.max(1, bar.player.durationSeconds)
            Layout.fillWidth: true
            // Follows the player unless the person is moving it.
            Binding on value {
                when: !slider.pressed
                value: bar.player.positionSeconds
            }
            onMoved: bar.player.seek(value)
        }
        Label {
            text: ui.recording.formatDuration(bar.player.durationSeconds)
            font.family: "monospace"
            color: theme.dimText
        }
        Label { text: qsTr("Speed"); color: theme.dimText }
        ValueComboBox {
            objectName: "playerSpeed"
            values: bar.player.speeds
            value: bar.player.speed
            format: v => v + "x"
            onChosen: v => bar.player.setSpeed(v)
        }
        Button {
            objectName: "playerStopButton"
            text: qsTr("Stop")
            onClicked: bar.player.stop()
        }
    }
}
