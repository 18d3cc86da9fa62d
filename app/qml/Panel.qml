import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// A framed area of a screen: a title over its content, laid out as a column.
Rectangle {
    id: panel

    property string title
    // Items placed inside a Panel go below the title, in a column.
    default property alias content: column.data
    property alias spacing: column.spacing

    color: theme.surface
    border.color: theme.border
    radius: theme.radius
    implicitWidth: column.implicitWidth + 2 * theme.padding
    implicitHeight: column.implicitHeight + 2 * theme.padding

    Theme { id: theme }

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: theme.padding
        spacing: theme.spacing

        Label {
            visible: panel.title !== ""
            text: panel.title
            color: theme.dimText
            font.bold: true
            font.letterSpacing: 0.5
            Layout.fillWidth: true
            elide: Text.ElideRight
        }
    }
}
