import QtQuick
import QtQuick.Controls

// A small on/off chip for choosing channels. It shows `on` and only reports clicks, so the
// model stays the one place that decides what is on.
AbstractButton {
    id: chip

    property bool on
    // Shown as a dot before the text when set, so a chip can double as a legend entry.
    property color swatch: "transparent"

    Theme { id: theme }

    checked: on
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    padding: Math.round(theme.unit * 0.25)
    leftPadding: Math.round(theme.unit * 0.5)
    rightPadding: Math.round(theme.unit * 0.5)
    implicitWidth: Math.max(theme.unit * 2.5, implicitContentWidth + leftPadding + rightPadding)
    implicitHeight: implicitContentHeight + topPadding + bottomPadding

    contentItem: Row {
        spacing: Math.round(theme.unit * 0.3)
        Rectangle {
            visible: chip.swatch.a > 0
            width: Math.round(theme.unit * 0.55)
            height: width
            radius: width / 2
            anchors.verticalCenter: parent.verticalCenter
            color: chip.on ? chip.swatch : "transparent"
            border.color: chip.swatch
            border.width: 1
        }
        Text {
            text: chip.text
            font: chip.font
            color: chip.on ? theme.text : theme.dimText
            anchors.verticalCenter: parent.verticalCenter
        }
    }

    background: Rectangle {
        radius: height / 2
        color: chip.on ? Qt.rgba(theme.accent.r, theme.accent.g, theme.accent.b, chip.down ? 0.45 : 0.28)
                       : (chip.hovered ? theme.raised : "transparent")
        border.color: chip.visualFocus ? theme.accent : (chip.on ? Qt.rgba(theme.accent.r, theme.accent.g, theme.accent.b, 0.7) : theme.border)
        border.width: 1
    }
}
