pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quillbrook

// A sentence on what a control will do, above it, for as long as `shown` asks for it. It is to be the
// control's accessible description too.
T.ToolTip {
    id: root

    property bool shown: false

    closePolicy: T.Popup.NoAutoClose
    delay: Metrics.helpDelay
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    horizontalPadding: Metrics.tooltipPaddingX
    margins: Metrics.space8
    verticalPadding: Metrics.tooltipPaddingY
    visible: shown && text !== ""
    x: parent ? (parent.width - width) / 2 : 0
    y: -height - Metrics.space8

    background: Rectangle {
        border.color: Theme.hairline
        border.width: Metrics.hairlineWidth
        color: Theme.surface
        radius: Metrics.controlRadius
    }
    contentItem: CaptionText {
        Accessible.ignored: true
        color: Theme.strong
        text: root.text
        wrapMode: Text.Wrap
    }
}
