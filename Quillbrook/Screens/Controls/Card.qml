pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// The quiet ground that things of one kind lie on.
Rectangle {
    id: root

    border.color: Theme.hairline
    border.width: Metrics.hairlineWidth
    color: Theme.surface
    radius: Metrics.cardRadius
}
