pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quillbrook

// A whole number picked along a line, under the words that say what it is: `label` is to hold the number. The
// arrow keys go one step, the page keys `pageSteps`, Home and End to the ends. `moved` tells that the person has
// changed `value`.
T.Slider {
    id: root

    property string label: ""
    property int pageSteps: 5

    readonly property real maximumValue: to
    readonly property real minimumValue: from

    function step(steps: int) {
        const next = Math.max(from, Math.min(to, value + steps * stepSize));
        if (!enabled || next === value)
            return;
        value = next;
        moved();
    }

    Accessible.name: label
    Accessible.role: Accessible.Slider
    Accessible.onDecreaseAction: step(-1)
    Accessible.onIncreaseAction: step(1)
    Keys.onDownPressed: step(-1)
    Keys.onPressed: event => {
        const steps = new Map([[Qt.Key_PageUp, pageSteps], [Qt.Key_PageDown, -pageSteps], [Qt.Key_Home, from - value], [Qt.Key_End, to - value]]);
        event.accepted = steps.has(event.key);
        if (event.accepted)
            step(steps.get(event.key));
    }
    Keys.onUpPressed: step(1)

    activeFocusOnTab: true
    hoverEnabled: true
    implicitHeight: topPadding + Metrics.controlHeight
    implicitWidth: Metrics.dialogWidth
    opacity: enabled ? 1 : Metrics.disabledOpacity
    snapMode: T.Slider.SnapAlways
    stepSize: 1
    topPadding: label === "" ? 0 : words.implicitHeight + Metrics.space4

    background: Item {
        Rectangle {
            color: Theme.hairline
            height: Metrics.sliderTrack
            radius: height / 2
            width: parent.width
            y: root.topPadding + (root.availableHeight - height) / 2

            Rectangle {
                color: Theme.accent
                height: parent.height
                radius: parent.radius
                width: root.handle.x + root.handle.width / 2
            }
        }
    }
    handle: Rectangle {
        border.color: Theme.accent
        border.width: Metrics.focusRingWidth
        color: Theme.surface
        implicitHeight: Metrics.sliderKnob
        implicitWidth: Metrics.sliderKnob
        radius: width / 2
        x: root.visualPosition * (root.width - width)
        y: root.topPadding + (root.availableHeight - height) / 2

        StateTint {
            hovered: root.hovered
            pressed: root.pressed
            radius: parent.radius
        }

        FocusRing {
            innerRadius: parent.radius
            shown: root.visualFocus
        }
    }

    BodyText {
        id: words

        Accessible.ignored: true
        color: Theme.strong
        text: root.label
        width: parent.width
    }
}
