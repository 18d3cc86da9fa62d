import QtQuick
import QtQuick.Controls

// A choice among numbers that shows them formatted. It follows `value`, which can also change
// elsewhere (the API, the settings), and reports the user's choice through `chosen`.
ComboBox {
    id: box

    property var values: []
    property var value
    property var format: v => String(v)

    signal chosen(var value)

    model: values
    currentIndex: values.indexOf(value)
    // The value itself, even when it is not one of the choices.
    displayText: format(value)

    delegate: ItemDelegate {
        required property var modelData
        required property int index
        width: ListView.view ? ListView.view.width : implicitWidth
        text: box.format(modelData)
        highlighted: box.highlightedIndex === index
    }

    // Wide enough for the longest formatted choice, not for the raw numbers.
    TextMetrics {
        id: widest
        font: box.font
        text: {
            let longest = box.displayText
            for (let i = 0; i < box.values.length; ++i) {
                const t = box.format(box.values[i])
                if (t.length > longest.length)
                    longest = t
            }
            return longest + "  "
        }
    }
    implicitWidth: Math.max(implicitBackgroundWidth + leftInset + rightInset,
                            Math.ceil(widest.advanceWidth) + leftPadding + rightPadding)

    onActivated: index => chosen(values[index])
}
