pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// What hovering and pressing look like: one colour at another opacity, laid over a control's ground.
Rectangle {
    id: root

    property bool hovered: false
    property bool pressed: false

    anchors.fill: parent
    color: Theme.strong
    opacity: !enabled ? 0 : pressed ? Metrics.pressedOpacity : hovered ? Metrics.hoverOpacity : 0

    Behavior on opacity {
        NumberAnimation {
            duration: Metrics.quickMotion
            easing.type: Easing.OutQuad
        }
    }
}
