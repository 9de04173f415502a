pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// One of the words of a picker or of a row of tabs. Not a button: one of Qt 6.4 is a button to those who hear the
// screen, whatever role it is given.
Rectangle {
    id: root

    required property int index
    required property string modelData
    required property SegmentGround picker

    readonly property bool isCurrent: index === picker.current

    function act() {
        picker.pick(index);
    }

    Accessible.focusable: true
    Accessible.focused: activeFocus
    Accessible.name: modelData
    Accessible.selectable: true
    Accessible.selected: isCurrent
    Accessible.onPressAction: act()
    Keys.onEnterPressed: act()
    Keys.onReturnPressed: act()
    Keys.onSpacePressed: act()

    activeFocusOnTab: isCurrent
    border.color: Theme.hairline
    border.width: isCurrent ? Metrics.hairlineWidth : 0
    color: isCurrent ? Theme.surface : "transparent"
    implicitHeight: Metrics.segmentHeight
    implicitWidth: Math.ceil(word.implicitWidth) + 2 * Metrics.segmentPadding
    radius: Metrics.segmentRadius

    StateTint {
        hovered: pointer.hovered && !root.isCurrent
        pressed: press.pressed && !root.isCurrent
        radius: parent.radius
    }

    // Only the keyboard gets here: a press does not take it.
    FocusRing {
        innerRadius: parent.radius
        shown: root.activeFocus
    }

    BodyText {
        id: word

        Accessible.ignored: true
        anchors.centerIn: parent
        color: root.isCurrent ? Theme.strong : Theme.body
        font.pointSize: Metrics.smallFont
        text: root.modelData
    }

    HoverHandler {
        id: pointer
    }

    TapHandler {
        id: press

        onTapped: root.act()
    }
}
