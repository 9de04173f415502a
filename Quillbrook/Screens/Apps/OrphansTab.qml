pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Quillbrook

// What is left of applications that are gone, and what is to be done with what is ticked of it.
ColumnLayout {
    id: root

    required property AppsState apps

    spacing: Metrics.space12

    HeadingText {
        text: qsTr("Files with no app left to own them")
        visible: root.apps.hasOrphans
    }

    BodyText {
        Layout.fillWidth: true
        color: Theme.label
        font.pointSize: Metrics.smallFont
        lineHeight: Metrics.textLine
        lineHeightMode: Text.FixedHeight
        text: qsTr("Each of these is named after an app that is not installed anywhere Quillbrook can see, and has not been touched in six months. That is strong evidence, not proof — an app kept somewhere unusual would look the same. Read each one before you tick it.")
        visible: root.apps.hasOrphans
        wrapMode: Text.Wrap
    }

    Item {
        Layout.fillHeight: true
        Layout.fillWidth: true

        ColumnLayout {
            anchors.centerIn: parent
            spacing: Metrics.space12
            visible: root.apps.orphansMessage !== ""
            width: parent.width

            BodyText {
                Layout.fillWidth: true
                font.pointSize: Metrics.messageFont
                horizontalAlignment: Text.AlignHCenter
                text: root.apps.orphansMessage
                wrapMode: Text.Wrap
            }

            PushButton {
                Layout.alignment: Qt.AlignHCenter
                text: root.apps.loadAction
                visible: root.apps.isLoading || root.apps.isStopped
                onClicked: root.apps.stopOrGoOn()
            }
        }

        AppsList {
            entries: root.apps.orphans
            name: qsTr("Left behind by apps you removed")
            width: parent.width

            delegate: OrphanRow {
                canBeTicked: !root.apps.isRemoving
                width: ListView.view.width
                onEvidenceToggled: root.apps.toggleEvidence(index)
                onRevealed: root.apps.revealOrphan(index)
                onToggled: root.apps.toggleOrphan(index)
            }
        }
    }

    Card {
        Accessible.name: root.apps.chosenCount
        Accessible.role: Accessible.Grouping
        Layout.fillWidth: true
        implicitHeight: Metrics.selectionBarHeight
        visible: root.apps.hasChosen

        RowLayout {
            anchors.fill: parent
            anchors.leftMargin: Metrics.space16
            anchors.rightMargin: Metrics.space12
            spacing: Metrics.space12

            BodyText {
                color: Theme.strong
                semibold: true
                text: root.apps.chosenCount
            }

            BodyText {
                Layout.fillWidth: true
                color: Theme.accent
                semibold: true
                text: root.apps.chosenSize
            }

            PushButton {
                enabled: !root.apps.isRemoving
                text: qsTr("Clear selection")
                onClicked: root.apps.clearChosen()
            }

            PushButton {
                enabled: !root.apps.isRemoving
                kind: PushButton.Prominent
                text: qsTr("Move to Trash")
                onClicked: confirming.open()
            }
        }
    }

    ConfirmDialog {
        id: confirming

        message: qsTr("They go to the Trash, so you can put them back. If an app turns out to still exist, it will make a fresh copy the next time it runs — you would lose its settings, not the app.")
        title: root.apps.confirmTitle

        PushButton {
            text: qsTr("Move to Trash")
            onClicked: {
                confirming.close();
                root.apps.removeChosen();
            }
        }
    }
}
