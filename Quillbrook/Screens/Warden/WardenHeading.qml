pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// The heading of one class of findings, with what they come to; or of the log, which has neither dot nor sum.
Item {
    id: root

    required property wardenRow row

    Accessible.name: row.spoken
    Accessible.role: Accessible.Heading
    implicitHeight: Metrics.wardenHeadingHeight

    RowLayout {
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Metrics.space8
        anchors.left: parent.left
        anchors.leftMargin: dot.visible ? Metrics.space4 / 2 : 0
        anchors.right: parent.right
        anchors.rightMargin: Metrics.space4 / 2
        spacing: Metrics.space8

        Rectangle {
            id: dot

            color: root.row.tone
            implicitHeight: Metrics.dotSize
            implicitWidth: Metrics.dotSize
            radius: Metrics.dotSize / 2
            visible: root.row.size !== ""
        }

        SectionLabel {
            Accessible.ignored: true
            text: root.row.title
        }

        CaptionText {
            Accessible.ignored: true
            Layout.fillWidth: true
            text: root.row.note
        }

        CaptionText {
            Accessible.ignored: true
            color: Theme.strong
            semibold: true
            text: root.row.size
        }
    }
}
