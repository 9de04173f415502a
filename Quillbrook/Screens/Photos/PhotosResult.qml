pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// What the range holds, what deleting it would mean, and the button that does it.
ColumnLayout {
    id: root

    required property PhotosState photos

    signal deleteAsked

    spacing: Metrics.space20

    ColumnLayout {
        spacing: 0

        FigureText {
            Layout.fillWidth: true
            text: root.photos.resultTitle
            wrapMode: Text.Wrap
        }

        BodyText {
            Layout.fillWidth: true
            color: Theme.label
            font.pointSize: Metrics.smallFont
            text: root.photos.resultText
            wrapMode: Text.Wrap
        }
    }

    ColumnLayout {
        spacing: Metrics.bannerGap

        Banner {
            Layout.fillWidth: true
            symbol: "icloud"
            text: qsTr("If iCloud Photos is on, removing these also removes them from your iPhone, your iPad and iCloud. It is not a local clean-up.")
            title: qsTr("This deletes from every device, not just this Mac")
            tone: Theme.careful
        }

        Banner {
            Layout.fillWidth: true
            symbol: "exclamationmark.triangle"
            text: root.photos.elsewhereText
            tinted: true
            title: qsTr("The originals are not on this Mac")
            tone: Theme.danger
            visible: text !== ""
        }

        Banner {
            Layout.fillWidth: true
            note: root.photos.emptyingText
            symbol: "clock.arrow.circlepath"
            text: qsTr("Deleted photos sit in Recently Deleted for 30 days. Until that is emptied, they still take up room — exactly like the Trash.")
            title: qsTr("The space comes back in 30 days, or sooner if you empty it")
            tone: Theme.label
        }
    }

    PushButton {
        Layout.preferredHeight: Metrics.prominentHeight
        enabled: root.photos.canDelete
        horizontalPadding: Metrics.space20 - Metrics.hairlineWidth
        kind: PushButton.Prominent
        text: root.photos.deleteText
        tone: Theme.danger
        onClicked: root.deleteAsked()
    }
}
