pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// How much is ticked on the screen "Free up space", and the way to clear it.
Item {
    id: root

    required property WardenState warden

    implicitHeight: Metrics.wardenHeaderHeight

    Column {
        anchors.left: parent.left
        anchors.leftMargin: Metrics.paneInset
        anchors.right: button.left
        anchors.rightMargin: Metrics.space12
        anchors.verticalCenter: parent.verticalCenter

        FigureText {
            text: root.warden.total
            width: parent.width
        }

        CaptionText {
            font.pointSize: Metrics.smallFont
            text: root.warden.counts
            width: parent.width
        }
    }

    PushButton {
        id: button

        anchors.right: parent.right
        anchors.rightMargin: Metrics.paneInset
        anchors.verticalCenter: parent.verticalCenter
        enabled: root.warden.canReclaim
        implicitHeight: Metrics.prominentHeight
        kind: PushButton.Prominent
        text: qsTr("Move to Trash")
        onClicked: root.warden.askToReclaim()
    }
}
