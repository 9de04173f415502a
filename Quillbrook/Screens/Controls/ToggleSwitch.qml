pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quillbrook

// Something that is on or off at once, without a confirming press. Where it stands without words, `name`
// says what it switches.
T.Switch {
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
        color: root.checked ? Theme.accent : Theme.faded(Theme.label, Metrics.disabledOpacity)
        implicitHeight: Metrics.switchHeight
        implicitWidth: Metrics.switchWidth
        radius: height / 2
        y: (root.height - height) / 2

        Behavior on color {
            ColorAnimation {
                duration: Metrics.quickMotion
            }
        }

        StateTint {
            hovered: root.hovered
            pressed: root.down
            radius: parent.radius
        }

        Rectangle {
            readonly property int inset: Metrics.focusRingWidth

            color: Theme.surface
            height: parent.height - 2 * inset
            radius: height / 2
            width: height
            x: inset + root.visualPosition * (parent.width - width - 2 * inset)
            y: inset

            Behavior on x {
                NumberAnimation {
                    duration: Metrics.quickMotion
                    easing.type: Easing.OutQuad
                }
            }
        }

        FocusRing {
            innerRadius: parent.radius
            shown: root.visualFocus
        }
    }
}
