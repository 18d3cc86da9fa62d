import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// One index as a tall bar: filled up to its 0-100 level, with the goal marked across it. A
// negative level means none yet: an empty bar and a dash.
Item {
    id: bar

    // Prefix of the inner items' names ("<name>Track", "<name>Fill").
    property string name
    property string label
    property real level: -1
    property real goal: 50
    property bool reached: false
    property color color: theme.accent

    readonly property real shown: level >= 0 ? Math.max(0, Math.min(100, level)) : 0

    Theme { id: theme }

    ColumnLayout {
        anchors.fill: parent
        spacing: theme.spacing

        Label {
            text: bar.level >= 0 ? Math.round(bar.level) : "–"
            color: bar.reached ? bar.color : theme.text
            font.pointSize: theme.basePointSize * 3
            font.bold: true
            Layout.alignment: Qt.AlignHCenter
        }

        Rectangle {
            id: track
            objectName: bar.name + "Track"
            color: theme.plotBackground
            border.color: bar.reached ? bar.color : theme.border
            border.width: bar.reached ? 2 : 1
            radius: theme.radius
            Layout.fillHeight: true
            Layout.preferredWidth: Math.min(theme.unit * 8, bar.width * 0.6)
            Layout.alignment: Qt.AlignHCenter

            Rectangle {
                objectName: bar.name + "Fill"
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.bottom: parent.bottom
                anchors.margins: 2
                radius: theme.radius
                height: (track.height - 4) * bar.shown / 100
                color: bar.color
                opacity: bar.reached ? 1 : 0.6
                Behavior on height { NumberAnimation { duration: 250; easing.type: Easing.OutCubic } }
            }

            // The goal: a line across the bar and its value beside it.
            Rectangle {
                objectName: bar.name + "GoalLine"
                x: -Math.round(theme.unit * 0.5)
                width: parent.width + theme.unit
                height: 2
                y: 2 + (track.height - 4) * (1 - bar.goal / 100) - height / 2
                color: theme.text

                Label {
                    anchors.left: parent.right
                    anchors.leftMargin: Math.round(theme.spacing / 2)
                    anchors.verticalCenter: parent.verticalCenter
                    text: qsTr("Goal %1").arg(Math.round(bar.goal))
                    color: theme.dimText
                }
            }
        }

        Label {
            text: bar.label
            font.pointSize: theme.basePointSize * 1.4
            Layout.alignment: Qt.AlignHCenter
        }
        Label {
            text: bar.reached ? qsTr("Goal reached") : " "
            color: bar.color
            Layout.alignment: Qt.AlignHCenter
        }
    }
}
