import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import QtQuick.Window

// The main window: the screens as tabs over a status bar.
ApplicationWindow {
    id: root
    objectName: "mainWindow"

    Theme { id: theme }

    // The start-up tells where the window may go (the screen's available area); the window
    // takes most of it, centred, and never more.
    readonly property rect available: typeof initialWidth === "number" && initialWidth > 0
                                      ? Qt.rect(initialX, initialY, initialWidth, initialHeight)
                                      : Qt.rect(0, 0, Screen.desktopAvailableWidth, Screen.desktopAvailableHeight)
    readonly property int startWidth: Math.min(available.width, Math.max(1280, Math.round(available.width * 0.8)))
    readonly property int startHeight: Math.min(available.height, Math.max(720, Math.round(available.height * 0.8)))

    x: available.x + Math.round((available.width - startWidth) / 2)
    y: available.y + Math.round((available.height - startHeight) / 2)
    width: startWidth
    height: startHeight
    minimumWidth: Math.min(960, available.width)
    minimumHeight: Math.min(600, available.height)
    visible: true
    title: ui.title
    color: theme.window

    palette.window: theme.window
    palette.windowText: theme.text
    palette.base: theme.plotBackground
    palette.alternateBase: theme.surface
    palette.text: theme.text
    palette.button: theme.raised
    palette.buttonText: theme.text
    palette.brightText: "#ffffff"
    palette.highlight: theme.accent
    palette.highlightedText: theme.accentText
    palette.light: "#3b424b"
    palette.midlight: "#2f353c"
    palette.mid: "#23282e"
    palette.dark: "#101215"
    palette.shadow: "#000000"
    palette.placeholderText: theme.dimText
    palette.toolTipBase: theme.raised
    palette.toolTipText: theme.text
    palette.link: theme.accent
    palette.disabled.windowText: "#6c747d"
    palette.disabled.text: "#6c747d"
    palette.disabled.buttonText: "#6c747d"
    palette.disabled.button: theme.surface

    header: TabBar {
        id: tabs
        objectName: "screenTabs"
        currentIndex: ui.currentScreen
        onCurrentIndexChanged: {
            if (ui.currentScreen !== currentIndex)
                ui.currentScreen = currentIndex
        }
        Repeater {
            model: ui.screens
            TabButton {
                required property string modelData
                text: modelData
            }
        }
    }

    StackLayout {
        id: screens
        objectName: "screens"
        anchors.fill: parent
        currentIndex: ui.currentScreen

        DevicesScreen {}
        SignalScreen {}
        SpectrumScreen {}
        IndicesScreen {}
        FeedbackScreen {}
        RecordingScreen {}
        RecordingsScreen {}
        MontageScreen {}
        AlgorithmsScreen {}
        ConsoleScreen {}
        ApiScreen {}
        SettingsScreen {}
    }

    footer: StatusBar {}

    // Keys 1-9 mark the recording. A focused text field takes printable keys first, so typing
    // an annotation never adds key annotations. Declared one by one: a shortcut finds its window
    // through its parent, which objects made by an Instantiator do not have. The application
    // context (this is its only window) also holds while no window manager has made it active.
    component KeyAnnotation: Shortcut {
        property int key
        sequence: String(key)
        context: Qt.ApplicationShortcut
        enabled: ui.recording.recording
        onActivated: ui.recording.annotateKey(key)
    }
    KeyAnnotation { key: 1 }
    KeyAnnotation { key: 2 }
    KeyAnnotation { key: 3 }
    KeyAnnotation { key: 4 }
    KeyAnnotation { key: 5 }
    KeyAnnotation { key: 6 }
    KeyAnnotation { key: 7 }
    KeyAnnotation { key: 8 }
    KeyAnnotation { key: 9 }

    onClosing: close => {
        if (ui.closeNeedsConfirmation()) {
            close.accepted = false
            closeDialog.open()
        }
    }

    Dialog {
        id: closeDialog
        objectName: "closeDialog"
        title: qsTr("Quit")
        modal: true
        anchors.centerIn: Overlay.overlay
        width: Math.min(root.width - 2 * theme.unit, Math.max(implicitWidth, theme.unit * 22))

        Label {
            width: parent.width
            text: qsTr("A recording is running. Stop it and quit?")
            wrapMode: Text.WordWrap
        }

        footer: DialogButtonBox {
            Button {
                objectName: "stopAndQuitButton"
                text: qsTr("Stop and quit")
                DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole
            }
            Button {
                objectName: "cancelQuitButton"
                text: qsTr("Cancel")
                DialogButtonBox.buttonRole: DialogButtonBox.RejectRole
            }
        }

        onAccepted: {
            ui.prepareToQuit()
            Qt.quit()
        }
    }
}
