pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// What a picker of segments and a row of tabs have in common: the ground, and the keys. One of a few words holds; it
// shows `current` and asks by `picked` for another. One stop of the Tab key; the arrow keys go from word to word.
// `name` says what is picked. The segments are handed in as children, by the repeater that makes them.
Rectangle {
    id: root

    required property string name
    /// The words.
    required property list<string> options
    property int current: 0
    required property Repeater segments
    default property alias content: row.data

    signal picked(int index)

    function pick(index: int) {
        if (enabled && index >= 0 && index < options.length && index !== current)
            picked(index);
    }

    function step(steps: int) {
        pick(Math.max(0, Math.min(current + steps, options.length - 1)));
        if (segments.itemAt(current))
            segments.itemAt(current).forceActiveFocus(Qt.TabFocusReason);
    }

    Accessible.name: name
    Keys.onDownPressed: step(1)
    Keys.onLeftPressed: step(-1)
    Keys.onPressed: event => {
        event.accepted = event.key === Qt.Key_Home || event.key === Qt.Key_End;
        if (event.accepted)
            step(event.key === Qt.Key_Home ? -options.length : options.length);
    }
    Keys.onRightPressed: step(1)
    Keys.onUpPressed: step(-1)

    border.color: Theme.hairline
    border.width: Metrics.hairlineWidth
    color: Theme.faded(Theme.hairline, Metrics.disabledOpacity)
    implicitHeight: Metrics.prominentHeight
    implicitWidth: row.implicitWidth + 2 * row.x
    opacity: enabled ? 1 : Metrics.disabledOpacity
    radius: Metrics.controlRadius

    Row {
        id: row

        anchors.verticalCenter: parent.verticalCenter
        spacing: Metrics.segmentGap
        x: Metrics.segmentGap + Metrics.hairlineWidth
    }
}
