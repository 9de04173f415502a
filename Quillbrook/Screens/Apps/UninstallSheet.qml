pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Quillbrook

// What goes with an application, item by item, before anything does.
Sheet {
    id: root

    required property UninstallSheetState sheet

    implicitHeight: column.implicitHeight
    title: sheet.title

    function follow() {
        if (sheet.isOpen)
            open();
        else
            close();
    }

    Component.onCompleted: follow()
    closePolicy: sheet.isWorking ? T.Popup.NoAutoClose : T.Popup.CloseOnEscape
    onClosed: sheet.dismiss()
    onOpened: hold(cancelButton)

    Connections {
        function onOpenChanged() {
            root.follow();
        }

        target: root.sheet
    }

    ColumnLayout {
        id: column

        anchors.fill: parent
        spacing: 0

        RowLayout {
            Layout.fillWidth: true
            Layout.margins: Metrics.space20
            spacing: Metrics.findingInset

            AppIcon {
                side: Metrics.sheetIconSize
                source: root.sheet.icon
            }

            ColumnLayout {
                Layout.fillWidth: true
                spacing: Metrics.space4 / 2

                HeadingText {
                    Layout.fillWidth: true
                    text: root.sheet.title
                }

                BodyText {
                    Layout.fillWidth: true
                    color: Theme.label
                    font.pointSize: Metrics.smallFont
                    text: root.sheet.origin
                    wrapMode: Text.Wrap
                }
            }
        }

        Hairline {
            Layout.fillWidth: true
        }

        Flickable {
            id: flick

            // Brings what has the keyboard into sight.
            function reveal(item: Item) {
                const top = item.mapToItem(contentItem, 0, 0).y;
                contentY = Math.max(0, Math.min(Math.max(contentY, top + item.height + Metrics.space12 - height), top - Metrics.space12, contentHeight - height));
            }

            Layout.fillHeight: true
            Layout.fillWidth: true
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            contentHeight: content.implicitHeight
            contentWidth: width
            implicitHeight: content.implicitHeight

            T.ScrollBar.vertical: SlimScrollBar {
            }

            UninstallContent {
                id: content

                sheet: root.sheet
                width: flick.width
                onKeyboardAt: item => flick.reveal(item)
            }
        }

        Item {
            Layout.fillWidth: true
            clip: true
            implicitHeight: foot.implicitHeight + 2 * Metrics.space12

            Rectangle {
                anchors.bottomMargin: Metrics.hairlineWidth
                anchors.fill: parent
                anchors.leftMargin: Metrics.hairlineWidth
                anchors.rightMargin: Metrics.hairlineWidth
                anchors.topMargin: -radius
                color: Theme.surfaceSunken
                radius: Metrics.cardRadius
            }

            Hairline {
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.top: parent.top
            }

            RowLayout {
                id: foot

                anchors.left: parent.left
                anchors.leftMargin: Metrics.space20
                anchors.right: parent.right
                anchors.rightMargin: Metrics.space20
                anchors.verticalCenter: parent.verticalCenter
                spacing: Metrics.space8

                BodyText {
                    Layout.fillWidth: true
                    color: Theme.strong
                    semibold: true
                    text: root.sheet.total
                    wrapMode: Text.Wrap
                }

                PushButton {
                    id: cancelButton

                    enabled: !root.sheet.isWorking
                    focus: true
                    text: qsTr("Cancel")
                    onClicked: root.close()
                }

                PushButton {
                    enabled: root.sheet.canUninstall
                    kind: PushButton.Prominent
                    text: root.sheet.action
                    visible: root.sheet.blocked === ""
                    onClicked: confirming.open()
                }
            }
        }
    }

    ConfirmDialog {
        id: confirming

        message: root.sheet.confirmMessage
        title: root.sheet.confirmTitle

        PushButton {
            text: root.sheet.confirmAction
            onClicked: {
                confirming.close();
                root.sheet.uninstall();
            }
        }
    }
}
