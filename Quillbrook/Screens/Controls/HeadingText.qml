pragma ComponentBehavior: Bound

import Quillbrook

// The title of a screen, of a notice or of a sheet.
BodyText {
    id: root

    color: Theme.strong
    font.pointSize: Metrics.headingFont
    semibold: true
}
