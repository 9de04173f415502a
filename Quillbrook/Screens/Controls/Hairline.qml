pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// A divider.
Rectangle {
    id: root

    color: Theme.hairline
    implicitHeight: Metrics.hairlineWidth
    implicitWidth: Metrics.hairlineWidth
}
