import QtQuick
import QtWebEngine

// The command reference page inside the window. Loaded through a Loader, so a system without
// the web view module shows a button to the browser instead.
WebEngineView {
    objectName: "apiReferenceView"
    url: ui.api.referenceUrl
}
