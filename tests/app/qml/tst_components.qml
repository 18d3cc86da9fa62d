import QtQuick
import QtTest
import "../../../app/qml"

// The little logic the screens' components have: the gauge's range and the choice boxes that
// follow a value set elsewhere (an API client) but report only what the user picks.
Item {
    width: 400
    height: 300

    Gauge { id: gauge; width: 200; height: 200; label: "Meditation" }
    ValueComboBox {
        id: box
        values: [0, 0.5, 2, 5]
        value: 2
        format: v => v > 0 ? v + " Hz" : "off"
    }
    SignalSpy { id: chosen; target: box; signalName: "chosen" }

    TestCase {
        name: "Components"
        when: windowShown

        function findText(item, text) {
            if (item.text !== undefined && String(item.text) === text)
                return item
            for (let i = 0; i < item.children.length; ++i) {
                const found = findText(item.children[i], text)
                if (found)
                    return found
            }
            return null
        }

        function test_gauge_data() {
            return [
                { tag: "no value yet", value: -1, shown: 0, text: "—" },
                { tag: "inside", value: 42.4, shown: 42.4, text: "42" },
                { tag: "above the top", value: 130, shown: 100, text: "100" },
                { tag: "at the bottom", value: 0, shown: 0, text: "0" },
            ]
        }

        function test_gauge(data) {
            gauge.value = data.value
            compare(gauge.shown, data.shown)
            verify(findText(gauge, data.text) !== null, "shows " + data.text)
        }

        function test_boxFollowsTheValueAndReportsOnlyChoices() {
            chosen.clear()
            box.value = 5
            compare(box.currentIndex, 3)
            compare(box.displayText, "5 Hz")
            box.value = 7 // not a choice: shown as it is
            compare(box.currentIndex, -1)
            compare(box.displayText, "7 Hz")
            compare(chosen.count, 0)
            box.activated(0)
            compare(chosen.count, 1)
            compare(chosen.signalArguments[0][0], 0)
        }
    }
}
