pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quillbrook

// The bar beside a list that is longer than its room; it is not there while everything fits.
T.ScrollBar {
    id: root

    hoverEnabled: true
    implicitHeight: Metrics.scrollBarWidth + 2 * padding
    implicitWidth: Metrics.scrollBarWidth + 2 * padding
    minimumSize: orientation === Qt.Horizontal ? height / width : width / height
    padding: Metrics.hairlineWidth
    policy: T.ScrollBar.AsNeeded
    visible: size < 1

    contentItem: Rectangle {
        color: Theme.strong
        implicitHeight: Metrics.scrollBarWidth
        implicitWidth: Metrics.scrollBarWidth
        opacity: root.pressed || root.hovered ? Metrics.disabledOpacity : 2 * Metrics.pressedOpacity
        radius: width / 2
    }
}
