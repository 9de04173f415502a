pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quillbrook

// A box to tick. Where it stands without words, `name` says what it ticks.
T.CheckBox {
    id: root

    property string name: text

    function act() {
        if (!enabled)
            return;
        toggle();
        toggled();
    }

    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.name: name
    Accessible.role: Accessible.CheckBox
    Accessible.onPressAction: act()
    Accessible.onToggleAction: act()
    Keys.onEnterPressed: act()
    Keys.onReturnPressed: act()

    activeFocusOnTab: true
    font.pointSize: Metrics.bodyFont
    hoverEnabled: true
    implicitHeight: Math.max(indicator.height, implicitContentHeight)
    implicitWidth: text === "" ? indicator.width : implicitContentWidth
    opacity: enabled ? 1 : Metrics.disabledOpacity
    padding: 0
    spacing: Metrics.space8

    contentItem: BodyText {
        Accessible.ignored: true
        font: root.font
        leftPadding: root.indicator.width + root.spacing
        text: root.text
        verticalAlignment: Text.AlignVCenter
        visible: root.text !== ""
    }
    indicator: Rectangle {
        border.color: root.checked ? Theme.accent : Theme.faded(Theme.label, Metrics.faintOpacity)
        border.width: Metrics.hairlineWidth
        color: root.checked ? Theme.accent : Theme.surface
        implicitHeight: Metrics.tickSize
        implicitWidth: Metrics.tickSize
        radius: Metrics.tickRadius
        y: (root.height - height) / 2

        StateTint {
            hovered: root.hovered
            pressed: root.down
            radius: parent.radius
        }

        Symbol {
            anchors.centerIn: parent
            color: Theme.surface
            height: Metrics.symbolSmall
            name: "checkmark"
            visible: root.checked
            width: Metrics.symbolSmall
        }

        FocusRing {
            innerRadius: parent.radius
            shown: root.visualFocus
        }
    }
}
