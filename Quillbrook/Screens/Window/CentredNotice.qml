pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// A screen with nothing to show says so here, in the middle.
Item {
    id: root

    required property string message
    required property string title

    Column {
        anchors.centerIn: parent
        spacing: Metrics.space8
        width: Math.min(Metrics.noticeWidth, parent.width - 2 * Metrics.paneInset)

        HeadingText {
            horizontalAlignment: Text.AlignHCenter
            text: root.title
            width: parent.width
            wrapMode: Text.Wrap
        }

        BodyText {
            font.pointSize: Metrics.messageFont
            horizontalAlignment: Text.AlignHCenter
            text: root.message
            width: parent.width
            wrapMode: Text.Wrap
        }
    }
}
