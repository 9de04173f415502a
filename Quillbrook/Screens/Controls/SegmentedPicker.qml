pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quillbrook

// One of a few words, side by side, of which one holds. It shows `current` and asks by `picked` for another. One
// stop of the Tab key; the arrow keys go from word to word. `name` says what is picked.
Rectangle {
    id: root

    required property string name
    /// The words.
    required property list<string> options
    property int current: 0
    /// What the row and each of its words are to those who hear the screen.
    property int role: Accessible.Grouping
    property int optionRole: Accessible.RadioButton

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
    Accessible.role: role
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

        Repeater {
            id: segments

            model: root.options

            T.AbstractButton {
                id: segment

                required property int index
                required property string modelData

                readonly property bool isCurrent: index === root.current

                function act() {
                    root.pick(index);
                }

                Accessible.checkable: root.optionRole === Accessible.RadioButton
                Accessible.checked: isCurrent
                Accessible.name: text
                Accessible.role: root.optionRole
                Accessible.selectable: true
                Accessible.selected: isCurrent
                Accessible.onPressAction: act()
                Keys.onEnterPressed: act()
                Keys.onReturnPressed: act()

                activeFocusOnTab: isCurrent
                focusPolicy: Qt.TabFocus
                font.pointSize: Metrics.smallFont
                horizontalPadding: Metrics.segmentPadding
                hoverEnabled: true
                implicitHeight: Metrics.segmentHeight
                implicitWidth: Math.ceil(implicitContentWidth) + leftPadding + rightPadding
                text: modelData

                onClicked: act()

                background: Rectangle {
                    border.color: Theme.hairline
                    border.width: segment.isCurrent ? Metrics.hairlineWidth : 0
                    color: segment.isCurrent ? Theme.surface : "transparent"
                    radius: Metrics.segmentRadius

                    StateTint {
                        hovered: segment.hovered && !segment.isCurrent
                        pressed: segment.down && !segment.isCurrent
                        radius: parent.radius
                    }

                    FocusRing {
                        innerRadius: parent.radius
                        shown: segment.visualFocus
                    }
                }
                contentItem: BodyText {
                    Accessible.ignored: true
                    color: segment.isCurrent ? Theme.strong : Theme.body
                    font: segment.font
                    horizontalAlignment: Text.AlignHCenter
                    text: segment.text
                }
            }
        }
    }
}
