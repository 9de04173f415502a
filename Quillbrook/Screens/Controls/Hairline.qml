pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// A divider; `faint` is the one between the rows of a card.
Rectangle {
    id: root

    property bool faint: false

    color: faint ? Theme.faded(Theme.hairline, Metrics.faintOpacity) : Theme.hairline
    implicitHeight: Metrics.hairlineWidth
    implicitWidth: Metrics.hairlineWidth
}
