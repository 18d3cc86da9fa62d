import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import QtQuick.Window

// Neurofeedback: the chosen view (bars, balloon or spectrum) driven live by meditation and
// concentration, the goals to reach, and a full-screen mode left with Esc. A client switches
// the view with gameManage; the choice here shows there too.
Item {
    id: screen
    objectName: "feedbackScreen"

    Theme { id: theme }

    // The window's state before full screen, given back after it.
    property int visibilityBefore: Window.Windowed

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: theme.padding
        spacing: theme.spacing

        Flow {
            objectName: "feedbackToolbar"
            spacing: theme.unit
            Layout.fillWidth: true

            Row {
                spacing: Math.round(theme.spacing / 2)
                Repeater {
                    model: ui.feedback.screens
                    Button {
                        required property string modelData
                        required property int index
                        objectName: "feedbackChoice_" + modelData
                        text: ui.feedback.titles[index]
                        checkable: true
                        checked: ui.feedback.currentIndex === index
                        highlighted: checked
                        onClicked: ui.feedback.current = modelData
                    }
                }
            }
            RowLayout {
                spacing: theme.spacing
                Label { text: qsTr("Meditation goal") }
                SpinBox {
                    objectName: "meditationGoalBox"
                    from: 0
                    to: 100
                    stepSize: 5
                    editable: true
                    value: ui.feedback.meditationGoal
                    onValueModified: ui.feedback.meditationGoal = value
                }
            }
            RowLayout {
                spacing: theme.spacing
                Label { text: qsTr("Concentration goal") }
                SpinBox {
                    objectName: "concentrationGoalBox"
                    from: 0
                    to: 100
                    stepSize: 5
                    editable: true
                    value: ui.feedback.concentrationGoal
                    onValueModified: ui.feedback.concentrationGoal = value
                }
            }
            Button {
                objectName: "fullScreenButton"
                text: qsTr("Full screen")
                onClicked: ui.feedback.fullScreen = true
            }
        }

        Label {
            text: qsTr("Levels run from 0 to 100 and adapt to you; a goal is the level to reach, set here for this session.")
            color: theme.dimText
            wrapMode: Text.WordWrap
            Layout.fillWidth: true
        }

        Rectangle {
            id: frame
            color: theme.plotBackground
            border.color: theme.border
            radius: theme.radius
            Layout.fillWidth: true
            Layout.fillHeight: true
        }
    }

    // The views live in the frame, or fill the whole window in full screen.
    Item {
        id: stage
        objectName: "feedbackStage"
        parent: ui.feedback.fullScreen ? fullView.contentItem : frame
        anchors.fill: parent
        anchors.margins: ui.feedback.fullScreen ? 0 : 1

        StackLayout {
            anchors.fill: parent
            currentIndex: ui.feedback.currentIndex
            FeedbackBars { objectName: "feedbackBars" }
            BalloonView { objectName: "balloonView" }
            FeedbackSpectrum { objectName: "feedbackSpectrum" }
        }
    }

    Popup {
        id: fullView
        objectName: "feedbackFullView"
        parent: Overlay.overlay
        x: 0
        y: 0
        width: parent ? parent.width : 0
        height: parent ? parent.height : 0
        padding: 0
        modal: true
        focus: true
        closePolicy: Popup.CloseOnEscape
        background: Rectangle { color: theme.window }
        onClosed: ui.feedback.fullScreen = false

        Label {
            id: escapeHint
            z: 1
            anchors.top: parent.top
            anchors.right: parent.right
            anchors.margins: theme.unit
            text: qsTr("Esc leaves full screen")
            color: theme.dimText
            opacity: hintTimer.running ? 1 : 0
            Behavior on opacity { NumberAnimation { duration: 600 } }
        }
        Timer { id: hintTimer; interval: 3000 }
        onOpened: hintTimer.restart()
    }

    Connections {
        target: ui.feedback
        function onFullScreenChanged() {
            const window = screen.Window.window
            if (ui.feedback.fullScreen) {
                if (window && window.visibility !== Window.FullScreen) {
                    screen.visibilityBefore = window.visibility
                    window.showFullScreen()
                }
                fullView.open()
            } else {
                fullView.close()
                if (window && window.visibility === Window.FullScreen)
                    window.visibility = screen.visibilityBefore === Window.FullScreen ? Window.Windowed : screen.visibilityBefore
            }
        }
    }
}
