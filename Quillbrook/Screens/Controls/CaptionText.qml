pragma ComponentBehavior: Bound

import Quillbrook

// The small line under or beside something more important.
BodyText {
    id: root

    color: Theme.label
    font.pointSize: Metrics.captionFont
}
