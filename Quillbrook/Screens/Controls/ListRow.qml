pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quillbrook

// A row of a list that can be chosen: the ground and the behaviour, to be filled by whoever uses it. `text`
// is what the row is called for those who hear the screen.
T.ItemDelegate {
    id: root

    property bool selected: false
    property int radius: 0

    function act() {
        if (enabled)
            clicked();
    }

    Accessible.name: text
    Accessible.role: Accessible.ListItem
    Accessible.selectable: true
    Accessible.selected: selected
    Accessible.onPressAction: act()
    Keys.onEnterPressed: act()
    Keys.onReturnPressed: act()

    horizontalPadding: Metrics.space16
    hoverEnabled: true
    implicitHeight: Math.max(Metrics.rowHeight, implicitContentHeight + topPadding + bottomPadding)
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    opacity: enabled ? 1 : Metrics.disabledOpacity
    verticalPadding: Metrics.space8

    background: Rectangle {
        color: root.selected ? Theme.faded(Theme.accent, Metrics.tintOpacity) : "transparent"
        radius: root.radius

        StateTint {
            hovered: root.hovered
            pressed: root.down
            radius: parent.radius
        }

        FocusRing {
            gap: -border.width
            innerRadius: root.radius
            // Not `visualFocus`: a list passes the keyboard on from row to row for no reason that counts there.
            shown: root.activeFocus && root.focusReason !== Qt.MouseFocusReason
        }
    }
}
