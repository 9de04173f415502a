pragma ComponentBehavior: Bound

import Quillbrook

// The one large figure of a screen.
BodyText {
    id: root

    color: Theme.strong
    font.pointSize: Metrics.figureFont
    semibold: true
}
