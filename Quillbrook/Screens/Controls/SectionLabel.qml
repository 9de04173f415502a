pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// The label above a group: small, tracked, upper case.
BodyText {
    id: root

    color: Theme.label
    font.capitalization: Font.AllUppercase
    font.letterSpacing: Metrics.sectionTracking
    font.pointSize: Metrics.sectionFont
    semibold: true
}
