pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// The ring around whatever has the keyboard: a control puts it into its background and says when it shows.
Rectangle {
    id: root

    /// Radius of what the ring goes around.
    property int innerRadius: Metrics.controlRadius
    /// Room between that and the ring; negative puts the ring inside.
    property int gap: Metrics.focusRingGap
    property bool shown: false

    anchors.fill: parent
    anchors.margins: -gap - border.width
    border.color: Theme.accent
    border.width: Metrics.focusRingWidth
    color: "transparent"
    objectName: "focusRing"
    radius: Math.max(0, innerRadius + gap + border.width)
    visible: shown
}
