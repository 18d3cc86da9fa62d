import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// The command interface: whether it runs and where, its key, the WebSocket clients connected
// now, the last requests, and the command reference page.
Item {
    id: screen
    objectName: "apiScreen"

    Theme { id: theme }

    // The web view starts once the screen is first shown, not with the program.
    property bool referenceWanted: false
    onVisibleChanged: if (visible) referenceWanted = true

    property bool keyShown: false

    RowLayout {
        id: content
        anchors.fill: parent
        anchors.margins: theme.padding
        spacing: theme.spacing

        ColumnLayout {
            spacing: theme.spacing
            Layout.fillHeight: true
            Layout.preferredWidth: (content.width - content.spacing) * 0.42
            Layout.minimumWidth: theme.unit * 22

            Panel {
                title: qsTr("Command interface")
                Layout.fillWidth: true

                Switch {
                    objectName: "apiEnabledSwitch"
                    text: qsTr("Accept commands from other programs")
                    checked: ui.api.enabled
                    onToggled: ui.api.enabled = checked
                }
                GridLayout {
                    columns: 2
                    rowSpacing: Math.round(theme.spacing / 2)
                    columnSpacing: theme.unit
                    Layout.fillWidth: true

                    Label { text: qsTr("HTTP"); color: theme.dimText }
                    Label {
                        objectName: "apiHttpAddress"
                        text: ui.api.running ? ui.api.httpAddress : qsTr("not running")
                        font.family: "monospace"
                        Layout.fillWidth: true
                        elide: Text.ElideRight
                    }
                    Label { text: qsTr("WebSocket"); color: theme.dimText }
                    Label {
                        objectName: "apiWebSocketAddress"
                        text: ui.api.webSocketListening ? ui.api.webSocketAddress
                                                        : qsTr("not listening on port %1").arg(ui.api.webSocketPort)
                        color: ui.api.webSocketListening || !ui.api.running ? theme.text : theme.warning
                        font.family: "monospace"
                        Layout.fillWidth: true
                        elide: Text.ElideRight
                    }
                    Label { text: qsTr("API key"); color: theme.dimText }
                    RowLayout {
                        spacing: theme.spacing
                        Layout.fillWidth: true
                        Label {
                            objectName: "apiKeyLabel"
                            text: !ui.api.hasKey ? qsTr("none: every program that reaches this computer may send commands")
                                                 : screen.keyShown ? ui.api.key : "••••••••"
                            color: ui.api.hasKey ? theme.text : theme.warning
                            font.family: ui.api.hasKey ? "monospace" : theme.metrics.font.family
                            wrapMode: Text.WordWrap
                            Layout.fillWidth: true
                        }
                        Button {
                            visible: ui.api.hasKey
                            text: screen.keyShown ? qsTr("Hide") : qsTr("Show")
                            flat: true
                            onClicked: screen.keyShown = !screen.keyShown
                        }
                    }
                }
                Label {
                    visible: text !== ""
                    text: ui.api.message
                    color: theme.warning
                    wrapMode: Text.WordWrap
                    Layout.fillWidth: true
                }
            }

            Panel {
                title: qsTr("Connected WebSocket clients (%1)").arg(clientList.count)
                Layout.fillWidth: true
                Layout.preferredHeight: theme.unit * 7
                Layout.minimumHeight: theme.unit * 5

                ListView {
                    id: clientList
                    objectName: "apiClientList"
                    model: ui.api.clients
                    clip: true
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    ScrollBar.vertical: ScrollBar {}
                    delegate: RowLayout {
                        required property string address
                        required property string since
                        required property int requests
                        width: ListView.view.width
                        spacing: theme.unit
                        Label { text: address; font.family: "monospace"; Layout.fillWidth: true; elide: Text.ElideRight }
                        Label { text: qsTr("since %1").arg(since); color: theme.dimText }
                        Label { text: qsTr("%n request(s)", "", requests); color: theme.dimText }
                    }
                    Label {
                        anchors.centerIn: parent
                        visible: clientList.count === 0
                        text: qsTr("No client connected")
                        color: theme.dimText
                    }
                }
            }

            Panel {
                title: qsTr("Last requests")
                Layout.fillWidth: true
                Layout.fillHeight: true

                ListView {
                    id: requestList
                    objectName: "apiRequestList"
                    model: ui.api.requests
                    clip: true
                    boundsBehavior: Flickable.StopAtBounds
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    ScrollBar.vertical: ScrollBar {}
                    delegate: RowLayout {
                        required property string time
                        required property string client
                        required property string command
                        required property bool result
                        required property string error
                        width: ListView.view.width
                        spacing: theme.spacing
                        Label { text: time; color: theme.dimText; font.family: "monospace" }
                        Label {
                            text: result ? "✓" : "✗"
                            color: result ? theme.good : theme.bad
                            font.bold: true
                        }
                        Label { text: command; font.family: "monospace" }
                        Label {
                            text: error !== "" ? error : client
                            color: error !== "" ? theme.bad : theme.dimText
                            elide: Text.ElideRight
                            Layout.fillWidth: true
                        }
                    }
                    Label {
                        anchors.centerIn: parent
                        visible: requestList.count === 0
                        text: qsTr("No request yet")
                        color: theme.dimText
                    }
                }
            }
        }

        Panel {
            title: qsTr("Command reference")
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.preferredWidth: (content.width - content.spacing) * 0.58

            RowLayout {
                spacing: theme.spacing
                Layout.fillWidth: true
                Label {
                    text: ui.api.referenceUrl.toString()
                    color: theme.dimText
                    font.family: "monospace"
                    elide: Text.ElideRight
                    Layout.fillWidth: true
                }
                Button {
                    objectName: "apiOpenBrowserButton"
                    text: qsTr("Open in browser")
                    enabled: ui.api.referenceUrl.toString() !== ""
                    onClicked: ui.api.openReferenceInBrowser()
                }
            }

            Rectangle {
                color: theme.window
                border.color: theme.border
                Layout.fillWidth: true
                Layout.fillHeight: true

                Loader {
                    id: reference
                    objectName: "apiReferenceLoader"
                    anchors.fill: parent
                    anchors.margins: 1
                    active: screen.referenceWanted && ui.api.referenceUrl.toString() !== ""
                    source: "ApiReferenceView.qml"
                }

                ColumnLayout {
                    objectName: "apiReferenceFallback"
                    anchors.centerIn: parent
                    width: parent.width - 2 * theme.unit
                    visible: reference.status === Loader.Error || ui.api.referenceUrl.toString() === ""
                    spacing: theme.spacing
                    Label {
                        text: ui.api.referenceUrl.toString() === ""
                              ? qsTr("The reference page is made when the command interface starts.")
                              : qsTr("This window cannot show web pages here. The reference opens in your browser.")
                        color: theme.dimText
                        wrapMode: Text.WordWrap
                        horizontalAlignment: Text.AlignHCenter
                        Layout.fillWidth: true
                    }
                    Button {
                        objectName: "apiFallbackBrowserButton"
                        visible: ui.api.referenceUrl.toString() !== ""
                        text: qsTr("Open in browser")
                        onClicked: ui.api.openReferenceInBrowser()
                        Layout.alignment: Qt.AlignHCenter
                    }
                }
            }
        }
    }
}
