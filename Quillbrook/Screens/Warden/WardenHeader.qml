pragma ComponentBehavior: Bound

import QtQuick
import Quillbrook

// How much is ticked on the screen "Free up space", and the way to clear it; while things go, how far that is,
// and the way to stop it.
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
        // Makes room for the bar below.
        anchors.verticalCenterOffset: root.warden.removal.shown ? -Metrics.space8 : 0

        FigureText {
            text: root.warden.removal.shown ? root.warden.removal.title : root.warden.total
            width: parent.width
        }

        CaptionText {
            elide: Text.ElideMiddle
            font.pointSize: Metrics.smallFont
            text: root.warden.removal.shown ? root.warden.removal.detail : root.warden.counts
            width: parent.width
        }
    }

    PushButton {
        id: button

        anchors.right: parent.right
        anchors.rightMargin: Metrics.paneInset
        anchors.verticalCenter: parent.verticalCenter
        anchors.verticalCenterOffset: root.warden.removal.shown ? -Metrics.gaugeBarHeight : 0
        enabled: root.warden.removal.shown ? root.warden.removal.canStop : root.warden.canReclaim
        implicitHeight: Metrics.prominentHeight
        kind: root.warden.removal.shown ? PushButton.Plain : PushButton.Prominent
        text: {
            if (root.warden.removal.shown)
                return qsTr("Stop");
            return qsTr("Move to Trash");
        }
        onClicked: {
            if (root.warden.removal.shown)
                root.warden.removal.stop();
            else
                root.warden.askToReclaim();
        }
    }

    ProgressLine {
        Accessible.name: root.warden.removal.title
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Metrics.bannerGap
        anchors.left: parent.left
        anchors.leftMargin: Metrics.paneInset
        anchors.right: parent.right
        anchors.rightMargin: Metrics.paneInset
        implicitHeight: Metrics.gaugeBarHeight
        value: root.warden.removal.share
        visible: root.warden.removal.shown
    }
}
