pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// The foot of the destination's card for a slow drive: how much slower, how that is known, and the switch that accepts
// it.
Rectangle {
    id: root

    required property OffloadState offload

    color: Qt.tint(Theme.surface, Theme.faded(Theme.careful, Metrics.tintOpacity))
    implicitHeight: row.implicitHeight + 2 * Metrics.space12
    radius: Metrics.cardRadius

    Hairline {
        width: parent.width
    }

    // In line with the card's other rows, within whose edge it lies.
    RowLayout {
        id: row

        anchors.left: parent.left
        anchors.leftMargin: Metrics.space16 - Metrics.hairlineWidth
        anchors.right: parent.right
        anchors.rightMargin: Metrics.space16 - Metrics.hairlineWidth
        anchors.verticalCenter: parent.verticalCenter
        spacing: Metrics.space12

        Symbol {
            Layout.alignment: Qt.AlignTop
            Layout.preferredHeight: Metrics.symbolLarge
            Layout.preferredWidth: Metrics.symbolLarge
            color: Theme.careful
            name: "exclamationmark.triangle"
        }

        ColumnLayout {
            spacing: Metrics.space4 / 2

            BodyText {
                Layout.fillWidth: true
                color: Theme.strong
                lineHeight: Metrics.textLine
                lineHeightMode: Text.FixedHeight
                semibold: true
                text: root.offload.slowWarning
                wrapMode: Text.Wrap
            }

            CaptionText {
                Layout.fillWidth: true
                lineHeight: Metrics.captionLine
                lineHeightMode: Text.FixedHeight
                text: qsTr("Measured by writing and reading a real file, not from what the bus claims. Anything relocated here is read at this speed from now on.")
                wrapMode: Text.Wrap
            }
        }

        BodyText {
            Accessible.ignored: true
            Layout.leftMargin: Metrics.space12
            text: qsTr("Relocate anyway")
        }

        ToggleSwitch {
            Accessible.description: root.offload.slowWarning
            checked: root.offload.acceptSlowBus
            name: qsTr("Relocate anyway")
            onToggled: root.offload.acceptSlowBus = checked
        }
    }
}
