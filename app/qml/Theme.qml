import QtQuick

// The colours and sizes every screen shares. Sizes follow the default font, so the whole
// window grows with the user's font and scaling settings.
QtObject {
    // The default font: what the user's settings and scaling make of it.
    readonly property FontMetrics metrics: FontMetrics {}
    // One line of text: the unit that spacing and minimum sizes are counted in.
    readonly property real unit: Math.ceil(metrics.height)
    readonly property real spacing: Math.round(unit * 0.5)
    readonly property real padding: Math.round(unit * 0.75)
    readonly property real radius: Math.round(unit * 0.3)
    readonly property real basePointSize: metrics.font.pointSize > 0 ? metrics.font.pointSize : 10

    readonly property color window: "#15181c"
    readonly property color surface: "#1d2126"
    readonly property color raised: "#262b31"
    readonly property color border: "#343a42"
    readonly property color plotBackground: "#111316"
    readonly property color grid: "#262c33"
    readonly property color text: "#dde2e8"
    readonly property color dimText: "#98a2ad"
    readonly property color accent: "#5ea8dc"
    readonly property color accentText: "#0d1013"

    readonly property color good: "#4fb37c"
    readonly property color average: "#d9a441"
    readonly property color bad: "#dd5550"
    readonly property color unknown: "#6a737d"
    readonly property color recording: "#e5484d"
    readonly property color warning: "#e8b45a"

    readonly property color trace: "#8cc9bd"
    readonly property color meditation: "#6cc3ae"
    readonly property color concentration: "#eea25f"

    // Distinct but soft, so several spectra stay apart on the dark background.
    readonly property var channelColors: ["#6cb6ff", "#f69d50", "#8ddb8c", "#dcbdfb", "#f47067", "#e0c46c",
        "#56d4dd", "#fc8dc7", "#b3c2d1", "#c6e48b", "#ffab70", "#96a9ff"]
    readonly property var rhythmColors: ({
        "delta": "#7f8ce0",
        "theta": "#56b6c2",
        "alpha": "#8ddb8c",
        "beta": "#e5c07b",
        "gamma": "#e06c75"
    })

    function channelColor(channel) {
        // A delegate being torn down during a model reset may ask without an index.
        return channelColors[(channel >= 0 ? channel : 0) % channelColors.length]
    }

    function qualityColor(level) {
        return level === "good" ? good : level === "average" ? average : level === "bad" ? bad : unknown
    }
}
