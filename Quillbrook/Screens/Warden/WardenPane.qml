pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Quillbrook

// Free up space: what was found, by how safe it is to clear, and how much of it is ticked. The list is one stop
// of the Tab key; the arrow keys walk what can be acted on, Space ticks it, and Tab goes on to its controls.
ColumnLayout {
    id: root

    required property WardenState warden

    spacing: 0

    WardenHeader {
        Layout.fillWidth: true
        warden: root.warden
    }

    Hairline {
        Layout.fillWidth: true
    }

    Item {
        Layout.fillHeight: true
        Layout.fillWidth: true

        // In the middle, or below what stands above it.
        BodyText {
            anchors.horizontalCenter: parent.horizontalCenter
            font.pointSize: Metrics.messageFont
            text: root.warden.emptyMessage
            visible: text !== ""
            y: Math.max((parent.height - height) / 2, list.contentHeight + 2 * Metrics.space24)
        }

        // Beside the cards, not over them.
        SlimScrollBar {
            id: bar

            anchors.bottom: parent.bottom
            anchors.right: parent.right
            anchors.rightMargin: Metrics.space4
            anchors.top: parent.top
            objectName: "wardenScrollBar"
        }

        LineList {
            id: list

            Accessible.name: qsTr("What can go")
            anchors.fill: parent
            anchors.leftMargin: Metrics.paneInset
            anchors.rightMargin: Metrics.paneInset
            // Rows differ in height; once those below are made, the bar beside them stays calm.
            cacheBuffer: 2 * height
            lines: root.warden.rows
            objectName: "wardenList"
            topMargin: Metrics.space12 + Metrics.hairlineWidth * 2

            T.ScrollBar.vertical: bar
            delegate: WardenLine {
                warden: root.warden
                width: ListView.view.width
            }
        }
    }

    Connections {
        function onFinishAsked() {
            finishing.open();
        }

        function onReclaimAsked() {
            confirming.open();
        }

        // The linter loses what a state in a namespace derives from.
        target: root.warden // qmllint disable
    }

    ConfirmDialog {
        id: confirming

        message: root.warden.confirmMessage
        title: root.warden.confirmTitle

        PushButton {
            text: root.warden.confirmAction
            onClicked: {
                confirming.close();
                root.warden.reclaim(false);
            }
        }

        PushButton {
            kind: PushButton.Destructive
            text: qsTr("Delete permanently")
            onClicked: {
                confirming.close();
                root.warden.reclaim(true);
            }
        }
    }

    ConfirmDialog {
        id: finishing

        hasExtra: root.warden.earlier.text !== ""
        message: qsTr("This frees the space immediately and cannot be undone. Only the items Quillbrook moved are removed.")
        title: root.warden.finishTitle

        extra: EarlierList {
            Layout.fillWidth: true
            things: root.warden.earlier
        }

        PushButton {
            enabled: root.warden.canFinish
            kind: PushButton.Destructive
            text: qsTr("Remove permanently")
            onClicked: {
                finishing.close();
                root.warden.finishRemoving();
            }
        }
    }
}
