pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// What stands in place of every pane while a scan runs: one column, in the middle.
Item {
    id: root

    required property ScanningState scan

    Column {
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.top: parent.top
        anchors.topMargin: Metrics.scanningTop
        spacing: Metrics.space12
        width: Math.min(Metrics.columnWidth, parent.width - 2 * Metrics.paneInset)

        HeadingText {
            elide: Text.ElideMiddle
            text: root.scan.title
            width: parent.width
        }

        ProgressLine {
            Accessible.name: root.scan.title
            Accessible.role: Accessible.ProgressBar
            value: root.scan.fraction
            width: parent.width
        }

        BodyText {
            color: Theme.label
            font.pointSize: Metrics.smallFont
            text: root.scan.counts
            width: parent.width
        }
    }
}
