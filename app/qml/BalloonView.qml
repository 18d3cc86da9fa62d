import QtQuick
import QtQuick.Controls
import QtQuick.Shapes

// A balloon over a landscape that rises with concentration and sinks as it falls, gliding to
// each new height; the dashed line is the height of the concentration goal.
Item {
    id: view

    // 0 on the ground, 1 at the top.
    property real lift: ui.feedback.balloonLift
    property real goal: ui.feedback.concentrationGoal / 100

    readonly property real topMargin: theme.unit
    readonly property real groundTop: height - Math.max(theme.unit * 2, height * 0.12)
    readonly property real travel: Math.max(0, groundTop - balloon.height - topMargin)
    // Where the balloon settles for the current level.
    readonly property real restingY: groundTop - balloon.height - travel * lift

    clip: true

    Theme { id: theme }

    Rectangle {
        anchors.fill: parent
        gradient: Gradient {
            GradientStop { position: 0; color: "#0f2238" }
            GradientStop { position: 1; color: "#35618c" }
        }
    }

    Repeater {
        model: [Qt.point(0.12, 0.18), Qt.point(0.62, 0.1), Qt.point(0.8, 0.42), Qt.point(0.3, 0.5)]
        Rectangle {
            required property point modelData
            x: view.width * modelData.x
            y: view.groundTop * modelData.y
            width: view.width * 0.16
            height: width * 0.32
            radius: height / 2
            color: "#c9d6e3"
            opacity: 0.16
        }
    }

    Rectangle {
        objectName: "balloonGround"
        y: view.groundTop
        width: parent.width
        height: parent.height - y
        gradient: Gradient {
            GradientStop { position: 0; color: "#3c6b4a" }
            GradientStop { position: 1; color: "#1f3a28" }
        }
    }

    // The goal's height: where the middle of the balloon is when concentration meets it.
    Shape {
        objectName: "balloonGoalLine"
        y: view.groundTop - balloon.height - view.travel * view.goal + balloon.bodyCentre
        width: parent.width
        height: 2
        ShapePath {
            strokeColor: "#e8edf2"
            strokeWidth: 2
            strokeStyle: ShapePath.DashLine
            dashPattern: [6, 6]
            startX: 0; startY: 1
            PathLine { x: view.width; y: 1 }
        }
        Label {
            anchors.right: parent.right
            anchors.rightMargin: theme.unit
            anchors.bottom: parent.top
            text: qsTr("Goal %1").arg(Math.round(ui.feedback.concentrationGoal))
            color: "#e8edf2"
        }
    }

    Item {
        id: balloon
        objectName: "balloon"

        readonly property real body: Math.max(theme.unit * 2, Math.min(view.width * 0.22, view.height * 0.2))
        readonly property real bodyCentre: body * 0.55
        property real sway: 0

        width: body
        height: body * 1.6
        x: (view.width - width) / 2 + sway
        y: view.restingY
        Behavior on y { SmoothedAnimation { velocity: Math.max(40, view.height * 0.7) } }

        SequentialAnimation on sway {
            running: view.visible
            loops: Animation.Infinite
            NumberAnimation { to: balloon.body * 0.06; duration: 1800; easing.type: Easing.InOutSine }
            NumberAnimation { to: -balloon.body * 0.06; duration: 1800; easing.type: Easing.InOutSine }
        }

        Shape {
            anchors.fill: parent
            layer.enabled: true
            layer.samples: 4

            // The string, then the knot, then the body over them.
            ShapePath {
                strokeColor: "#d0d6dc"
                strokeWidth: 1.5
                fillColor: "transparent"
                startX: balloon.body / 2; startY: balloon.body * 1.26
                PathQuad { x: balloon.body / 2; y: balloon.height; controlX: balloon.body * 0.36; controlY: balloon.body * 1.42 }
            }
            ShapePath {
                strokeColor: "transparent"
                fillColor: "#a3231b"
                startX: balloon.body / 2; startY: balloon.body * 1.18
                PathLine { x: balloon.body * 0.43; y: balloon.body * 1.27 }
                PathLine { x: balloon.body * 0.57; y: balloon.body * 1.27 }
                PathLine { x: balloon.body / 2; y: balloon.body * 1.18 }
            }
            ShapePath {
                id: skin
                readonly property real w: balloon.body
                strokeColor: "transparent"
                fillGradient: RadialGradient {
                    centerX: skin.w * 0.36; centerY: skin.w * 0.36
                    centerRadius: skin.w * 0.8
                    focalX: skin.w * 0.36; focalY: skin.w * 0.36
                    GradientStop { position: 0; color: "#f26b60" }
                    GradientStop { position: 1; color: "#b3261e" }
                }
                startX: skin.w / 2; startY: skin.w * 1.2
                PathCubic { x: 0; y: skin.w * 0.5; control1X: skin.w * 0.18; control1Y: skin.w * 1.05; control2X: 0; control2Y: skin.w * 0.8 }
                PathCubic { x: skin.w / 2; y: 0; control1X: 0; control1Y: skin.w * 0.2; control2X: skin.w * 0.22; control2Y: 0 }
                PathCubic { x: skin.w; y: skin.w * 0.5; control1X: skin.w * 0.78; control1Y: 0; control2X: skin.w; control2Y: skin.w * 0.2 }
                PathCubic { x: skin.w / 2; y: skin.w * 1.2; control1X: skin.w; control1Y: skin.w * 0.8; control2X: skin.w * 0.82; control2Y: skin.w * 1.05 }
            }
        }
        // The shine on the skin.
        Rectangle {
            x: balloon.body * 0.2
            y: balloon.body * 0.14
            width: balloon.body * 0.16
            height: balloon.body * 0.26
            radius: width / 2
            rotation: 25
            color: "#ffffff"
            opacity: 0.28
        }
    }

    Column {
        anchors.left: parent.left
        anchors.top: parent.top
        anchors.margins: theme.unit
        Label {
            text: qsTr("Concentration")
            color: "#e8edf2"
        }
        Label {
            objectName: "balloonLevelLabel"
            text: ui.feedback.concentration >= 0 ? Math.round(ui.feedback.concentration) : "–"
            color: ui.feedback.concentrationReached ? theme.concentration : "#e8edf2"
            font.pointSize: theme.basePointSize * 2.6
            font.bold: true
        }
    }
}
