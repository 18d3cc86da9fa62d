import QtQuick
import QtQuick.Layouts

// Meditation and concentration side by side as bars with their goals.
Rectangle {
    id: view
    color: theme.window

    Theme { id: theme }

    RowLayout {
        anchors.fill: parent
        anchors.margins: theme.unit
        spacing: theme.unit * 2

        Item { Layout.fillWidth: true }
        FeedbackBar {
            name: "meditation"
            label: qsTr("Meditation")
            level: ui.feedback.meditation
            goal: ui.feedback.meditationGoal
            reached: ui.feedback.meditationReached
            color: theme.meditation
            Layout.fillHeight: true
            Layout.preferredWidth: theme.unit * 14
        }
        FeedbackBar {
            name: "concentration"
            label: qsTr("Concentration")
            level: ui.feedback.concentration
            goal: ui.feedback.concentrationGoal
            reached: ui.feedback.concentrationReached
            color: theme.concentration
            Layout.fillHeight: true
            Layout.preferredWidth: theme.unit * 14
        }
        Item { Layout.fillWidth: true }
    }
}
