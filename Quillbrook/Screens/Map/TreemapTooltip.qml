pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// Names what is under the pointer on the map.
Item {
    id: root

    required property MapState map

    Accessible.ignored: true
    height: lines.height + 2 * Metrics.tooltipPaddingY
    visible: map.tooltipVisible
    width: Metrics.tooltipWidth
    x: map.tooltipPosition.x
    y: map.tooltipPosition.y

    SoftShadow {
    }

    Rectangle {
        anchors.fill: parent
        border.color: Theme.hairline
        border.width: Metrics.hairlineWidth
        color: Theme.surface
        radius: Metrics.controlRadius
    }

    Column {
        id: lines

        anchors.left: parent.left
        anchors.leftMargin: Metrics.tooltipPaddingX
        anchors.right: parent.right
        anchors.rightMargin: Metrics.tooltipPaddingX
        anchors.verticalCenter: parent.verticalCenter

        BodyText {
            color: Theme.strong
            elide: Text.ElideMiddle
            font.pointSize: Metrics.smallFont
            semibold: true
            text: root.map.tooltipName
            width: parent.width
        }

        CaptionText {
            color: Theme.accent
            text: root.map.tooltipSize
            width: parent.width
        }

        CaptionText {
            elide: Text.ElideMiddle
            text: root.map.tooltipPath
            width: parent.width
        }
    }
}
