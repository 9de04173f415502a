pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// One thing that Quillbrook moved to the Trash: whether the buttons above take it, its name, where it was, how
// long it has lain there, and how large it is.
CardSlice {
    id: root

    // The row at which the keyboard is, or was last.
    required property bool current
    required property wardenRow row
    // Where there is no room for it, the place is left out.
    property bool showsPlace: true

    signal toggled

    implicitHeight: Metrics.heldRowHeight
    last: row.last

    TickBox {
        id: tick

        activeFocusOnTab: root.current
        anchors.left: parent.left
        anchors.leftMargin: Metrics.space16
        anchors.verticalCenter: parent.verticalCenter
        checked: root.row.ticked
        enabled: !root.row.waits
        name: root.row.spoken
        onToggled: {
            root.toggled();
            // A click has put its own answer in the binding's place.
            checked = Qt.binding(() => root.row.ticked);
        }
    }

    BodyText {
        id: name

        anchors.left: parent.left
        anchors.leftMargin: Metrics.heldNameLeft
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.strong
        elide: Text.ElideMiddle
        font.pointSize: Metrics.bodyFont
        semibold: true
        text: root.row.title
        width: root.showsPlace ? Metrics.heldNameWidth : when.x - x - Metrics.space12
    }

    SelectableText {
        id: place

        activeFocusOnTab: root.current
        anchors.left: name.right
        anchors.leftMargin: Metrics.space12
        anchors.right: when.left
        anchors.rightMargin: Metrics.space12
        anchors.verticalCenter: parent.verticalCenter
        fullText: root.row.path
        visible: root.showsPlace
    }

    CaptionText {
        id: when

        anchors.right: size.left
        anchors.verticalCenter: parent.verticalCenter
        text: root.row.ages
        width: Math.max(Metrics.heldAgeWidth, Math.ceil(implicitWidth))
    }

    BodyText {
        id: size

        anchors.right: parent.right
        anchors.rightMargin: Metrics.space16
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.accent
        horizontalAlignment: Text.AlignRight
        semibold: true
        text: root.row.size
        width: Math.max(Metrics.heldSizeWidth, Math.ceil(implicitWidth))
    }
}
