pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// The shadow of a panel that floats over a screen: a few rings, each fainter than the one within, because a
// blur needs a graphics card. At the edge of what it falls from, a blurred shadow has half its strength. Goes
// behind the panel's ground.
Item {
    id: root

    property int radius: Metrics.controlRadius

    anchors.fill: parent

    Repeater {
        model: Metrics.shadowRadius

        Rectangle {
            required property int index

            anchors.fill: parent
            anchors.margins: -1 - index
            color: Theme.faded(Theme.shadow, 0.5 / Metrics.shadowRadius)
            radius: root.radius + 1 + index
        }
    }
}
