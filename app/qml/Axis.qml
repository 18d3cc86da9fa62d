import QtQuick
import QtQuick.Controls

// Tick labels along a plot's edge between `minimum` and `maximum`. Horizontal axes grow to the
// right, vertical ones upwards, like the plots they label. With `divisionStep` the labels sit
// on the plot's grid lines (every line, or every 2nd, 5th... when they would crowd); a
// logarithmic axis labels every decade from `minimum` up.
Item {
    id: axis

    property real minimum: 0
    property real maximum: 10
    property string suffix
    property int orientation: Qt.Horizontal
    property bool logarithmic: false
    // Distance between the plot's grid lines; 0 lets the axis choose a round step.
    property real divisionStep: 0
    // How many labels fit without touching.
    property int maximumTicks: orientation === Qt.Horizontal ? Math.max(2, Math.floor(width / (theme.unit * 5)))
                                                            : Math.max(2, Math.floor(height / (theme.unit * 2)))

    readonly property real span: maximum - minimum
    readonly property real step: {
        if (span <= 0)
            return 0
        const base = divisionStep > 0 ? divisionStep : 1
        // Below one division only when the plot has hardly any grid lines.
        const fine = divisionStep <= 0 || span / divisionStep < 3
        const factors = fine ? [0.1, 0.2, 0.25, 0.5, 1, 2, 5, 10, 20, 50, 100, 200, 500, 1000]
                             : [1, 2, 5, 10, 20, 50, 100, 200, 500, 1000]
        for (let i = 0; i < factors.length; ++i) {
            if (span / (base * factors[i]) <= maximumTicks - 1 + 1e-9)
                return base * factors[i]
        }
        return span
    }
    readonly property int decimals: {
        for (let d = 0; d < 3; ++d) {
            const scaled = step * Math.pow(10, d)
            if (Math.abs(scaled - Math.round(scaled)) < 1e-6)
                return d
        }
        return 3
    }
    readonly property real firstTick: Math.ceil(minimum / step - 1e-9) * step
    readonly property int decades: logarithmic && minimum > 0 && maximum > minimum
                                   ? Math.round(Math.log(maximum / minimum) / Math.LN10) : 0
    readonly property int tickCount: logarithmic ? (decades > 0 ? decades + 1 : 0)
                                   : (step > 0 ? Math.floor((maximum - firstTick) / step + 1e-9) + 1 : 0)

    Theme { id: theme }

    implicitHeight: orientation === Qt.Horizontal ? Math.ceil(theme.metrics.height * 0.95) : 0
    implicitWidth: orientation === Qt.Horizontal ? 0 : Math.ceil(widest.advanceWidth) + theme.spacing

    function valueAt(index) {
        return logarithmic ? minimum * Math.pow(10, index) : firstTick + index * step
    }
    function fractionOf(value) {
        return logarithmic ? Math.log(value / minimum) / Math.log(maximum / minimum) : (value - minimum) / span
    }
    function label(value) {
        const magnitude = logarithmic ? String(Number(Math.abs(value).toPrecision(2)))
                                      : Math.abs(value).toFixed(decimals)
        // A true minus sign, as wide as the plus that is not there.
        return (value < 0 && Number(magnitude) !== 0 ? "−" : "") + magnitude + suffix
    }

    TextMetrics {
        id: widest
        font.pointSize: theme.basePointSize * 0.9
        text: axis.label(axis.logarithmic ? axis.minimum : -Math.max(Math.abs(axis.minimum), Math.abs(axis.maximum)))
    }

    Repeater {
        model: axis.tickCount
        delegate: Label {
            required property int index
            readonly property real fraction: axis.fractionOf(axis.valueAt(index))

            text: axis.label(axis.valueAt(index))
            color: theme.dimText
            font.pointSize: theme.basePointSize * 0.9

            // The end labels stay inside the axis instead of hanging past the plot's edges.
            x: axis.orientation === Qt.Horizontal
               ? Math.round(Math.max(0, Math.min(axis.width - width, fraction * axis.width - width / 2)))
               : axis.width - width - Math.round(theme.spacing / 2)
            y: axis.orientation === Qt.Horizontal
               ? 0
               : Math.round(Math.max(0, Math.min(axis.height - height, (1 - fraction) * axis.height - height / 2)))
        }
    }
}
