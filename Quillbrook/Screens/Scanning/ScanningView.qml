pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quillbrook

// What stands in place of every pane while a scan runs: one column, in the middle.
Item {
    id: root

    required property ScanningState scan

    Column {
        id: column

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
            value: root.scan.progress.fraction
            width: parent.width
        }

        BodyText {
            color: Theme.label
            font.pointSize: Metrics.smallFont
            text: root.scan.progress.counts
            width: parent.width
        }
    }

    Card {
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Math.max(0, room - findings.contentHeight - 2 * border.width)
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.top: column.bottom
        anchors.topMargin: Metrics.space24
        visible: findings.count > 0
        width: column.width

        readonly property real room: parent.height - column.y - column.height - Metrics.space24

        ListView {
            id: findings

            Accessible.name: qsTr("Found so far")
            Accessible.role: Accessible.List
            activeFocusOnTab: count > 0
            anchors.fill: parent
            anchors.margins: parent.border.width
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            model: root.scan.findings

            T.ScrollBar.vertical: SlimScrollBar {
            }
            delegate: ArrivingFindingRow {
                width: ListView.view.width
            }
        }
    }
}
