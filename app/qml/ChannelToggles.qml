import QtQuick
import QtQuick.Controls

// One chip per channel of a channel list model, on when the model's `role` is true.
Flow {
    id: toggles

    property alias model: repeater.model
    // The boolean role that the chips show: "visible" or "inSpectrum".
    property string role: "visible"
    // Colour the chips like the channels' plot lines.
    property bool coloured: false

    signal toggled(int channel, bool on)

    spacing: Math.round(theme.unit * 0.3)

    Theme { id: theme }

    Repeater {
        id: repeater
        delegate: ToggleChip {
            required property int index
            required property var model
            text: model.name
            on: model[toggles.role]
            swatch: toggles.coloured ? theme.channelColor(index) : "transparent"
            onClicked: toggles.toggled(index, !on)
        }
    }
}
