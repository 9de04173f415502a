pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// The wide, soft shadow of a sheet over the dimmed window, a little below it. Rings, each fainter than the one
// within: a blur needs a graphics card, and filled layers would be drawn all over each other. Goes behind the
// sheet's ground.
Item {
    id: root

    property int radius: Metrics.cardRadius

    readonly property int ring: 2
    // It begins under the sheet, whose upper edge would else have none.
    readonly property int hidden: Metrics.sheetShadowDrop

    anchors.fill: parent

    Repeater {
        model: (Metrics.sheetShadowRadius + root.hidden) / root.ring

        Rectangle {
            required property int index

            readonly property int reach: (index + 1) * root.ring - root.hidden

            anchors.bottomMargin: -reach - Metrics.sheetShadowDrop
            anchors.fill: parent
            anchors.leftMargin: -reach
            anchors.rightMargin: -reach
            anchors.topMargin: -reach + Metrics.sheetShadowDrop
            border.color: Theme.faded(Theme.shadow, Math.pow(1 - index / (Metrics.sheetShadowRadius + root.hidden) * root.ring, 1.2))
            border.width: root.ring
            color: "transparent"
            radius: Math.max(root.radius + reach, root.ring)
        }
    }
}
