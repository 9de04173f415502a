pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// Where things are moved to: the folder and what was measured of it, and in the foot what a slow drive means.
Card {
    id: root

    required property OffloadState offload

    function takeKeyboard() {
        choose.forceActiveFocus(Qt.TabFocusReason);
    }

    implicitHeight: column.implicitHeight

    ColumnLayout {
        id: column

        spacing: 0
        width: parent.width

        RowLayout {
            Layout.bottomMargin: Metrics.space12
            Layout.leftMargin: Metrics.space16
            Layout.rightMargin: Metrics.space16
            Layout.topMargin: Metrics.space12
            spacing: Metrics.space12

            Symbol {
                Layout.preferredHeight: Metrics.symbolLarge
                Layout.preferredWidth: Metrics.symbolLarge
                color: root.offload.destinationFailed ? Theme.danger : Theme.label
                name: root.offload.destinationFailed ? "exclamationmark.triangle" : "externaldrive.badge.plus"
            }

            // Not a layout: one kept the room of the path when that was hidden.
            Column {
                Layout.fillWidth: true

                SelectableText {
                    font.pointSize: Metrics.bodyFont
                    font.weight: Font.DemiBold
                    fullText: root.offload.destination
                    height: Math.max(implicitHeight, Metrics.textLine)
                    inkColor: Theme.strong
                    visible: fullText !== ""
                    width: parent.width
                }

                CaptionText {
                    color: root.offload.destinationFailed ? Theme.danger : Theme.label
                    lineHeight: Metrics.captionLine
                    lineHeightMode: Text.FixedHeight
                    text: root.offload.destinationText
                    width: parent.width
                    wrapMode: Text.Wrap
                }

                CaptionText {
                    color: Theme.careful
                    lineHeight: Metrics.captionLine
                    lineHeightMode: Text.FixedHeight
                    text: root.offload.lossNote
                    visible: text !== ""
                    width: parent.width
                    wrapMode: Text.Wrap
                }
            }

            PushButton {
                id: choose

                text: qsTr("Choose a volume…")
                onClicked: root.offload.chooseVolume()
            }
        }

        SlowDriveFoot {
            Layout.fillWidth: true
            Layout.margins: Metrics.hairlineWidth
            offload: root.offload
            visible: root.offload.slowWarning !== ""
        }
    }
}
