pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// What the screen is for.
Column {
    id: root

    required property rulesRow row

    bottomPadding: Metrics.space16
    spacing: Metrics.space4

    HeadingText {
        Accessible.name: text
        Accessible.role: Accessible.Heading
        text: root.row.title
        width: parent.width
        wrapMode: Text.Wrap
    }

    BodyText {
        color: Theme.label
        font.pointSize: Metrics.smallFont
        lineHeight: Metrics.textLine
        lineHeightMode: Text.FixedHeight
        text: root.row.text
        width: Math.min(parent.width, Metrics.introWidth)
        wrapMode: Text.Wrap
    }
}
