pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// A piece of a card that a list draws row by row: round at the top of the first row and at the bottom of the
// last, and divided by hairlines between unless `divided` says otherwise.
Item {
    id: root

    property bool first: false
    property bool last: false
    property bool divided: true

    clip: true

    Card {
        anchors.bottomMargin: root.last ? 0 : -radius
        anchors.fill: parent
        anchors.topMargin: root.first ? 0 : -radius
    }

    Hairline {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        faint: true
        visible: root.divided && !root.first
    }
}
