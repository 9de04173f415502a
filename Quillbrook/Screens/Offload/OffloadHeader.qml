pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// How much could be moved, and what moving means.
Item {
    id: root

    required property OffloadState offload

    implicitHeight: Math.max(Metrics.wardenHeaderHeight, words.implicitHeight + 2 * Metrics.space16)

    Column {
        id: words

        anchors.left: parent.left
        anchors.leftMargin: Metrics.paneInset
        anchors.right: parent.right
        anchors.rightMargin: Metrics.paneInset
        anchors.verticalCenter: parent.verticalCenter

        FigureText {
            text: root.offload.total
            width: parent.width
            wrapMode: Text.Wrap
        }

        CaptionText {
            font.pointSize: Metrics.smallFont
            text: qsTr("Things you want to keep but rarely open. Quillbrook leaves a shortcut behind, so whatever uses them keeps working as if nothing moved.")
            width: parent.width
            wrapMode: Text.Wrap
        }
    }
}
