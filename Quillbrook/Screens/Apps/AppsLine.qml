pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// The ground of one row of a list on this screen: the stop of the keyboard, its ring, and the divider above.
Item {
    id: root

    required property int index
    property string spoken: ""
    default property alias content: inner.data

    // Its controls are stops of the Tab key.
    readonly property bool isCurrent: ListView.isCurrentItem

    Accessible.focusable: true
    Accessible.focused: activeFocus
    Accessible.name: spoken
    Accessible.role: Accessible.ListItem
    activeFocusOnTab: isCurrent || activeFocus
    // The wheel may have taken it out of sight.
    onActiveFocusChanged: if (activeFocus && ListView.view)
        ListView.view.positionViewAtIndex(index, ListView.Contain)

    FocusRing {
        gap: -border.width
        innerRadius: Metrics.cardRadius
        shown: root.activeFocus
    }

    Item {
        id: inner

        anchors.fill: parent
        anchors.leftMargin: Metrics.findingInset
        anchors.rightMargin: Metrics.findingInset
    }

    Hairline {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        faint: true
        visible: root.index > 0
    }
}
